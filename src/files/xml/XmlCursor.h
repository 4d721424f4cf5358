#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace tavoren {

/// The place in a text up to which it is parsed. The text ends at its first zero character.
class XmlCursor {
  public:
    /// Elements may be nested this deep, the outermost one counted.
    static constexpr std::size_t maxNesting = 255;

    explicit XmlCursor(std::shared_ptr<const std::wstring> text);

    bool atEnd() const { return place == length; }
    /// The character at the cursor; zero at the end.
    wchar_t current() const { return atEnd() ? L'\0' : (*shared)[place]; }
    bool at(std::wstring_view token) const {
        return current() == token.front() && rest().substr(0, token.size()) == token;
    }
    /// REQUIRES: `count` characters are left.
    void advance(std::size_t count = 1) { place += count; }
    /// Steps over the token if it is at the cursor.
    bool take(std::wstring_view token);
    /// Steps over all characters that are wanted; gives them.
    template <typename Predicate>
    std::wstring_view takeWhile(Predicate wanted) {
        const std::size_t start = place;
        while (!atEnd() && wanted((*shared)[place]))
            ++place;
        return since(start);
    }
    /// Steps up to the token, or to the end where there is none; gives the text on the way.
    std::wstring_view takeUntil(std::wstring_view token);

    std::size_t position() const { return place; }
    std::wstring_view rest() const { return {shared->data() + place, length - place}; }
    /// What was consumed since the cursor was at `start`. Lives as long as `text()`.
    std::wstring_view since(std::size_t start) const {
        return {shared->data() + start, place - start};
    }
    /// The whole text, shared with all nodes that come from it.
    const std::shared_ptr<const std::wstring>& text() const { return shared; }

    /// Counts one level of nesting while it lives.
    class Level {
      public:
        explicit Level(XmlCursor& counted) : cursor(counted) { ++cursor.nesting; }
        ~Level() { --cursor.nesting; }
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;
        bool tooDeep() const { return cursor.nesting > maxNesting; }

      private:
        XmlCursor& cursor;
    };

  private:
    std::shared_ptr<const std::wstring> shared;
    std::size_t length;
    std::size_t place = 0;
    std::size_t nesting = 0;
};

}  // namespace tavoren
