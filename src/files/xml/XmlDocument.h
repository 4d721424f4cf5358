#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "files/xml/XmlNode.h"

namespace tavoren {

/// An XML document in memory: a tolerant subset of the format that reads back what it writes.
class XmlDocument : public XmlNode {
  public:
    /// Bytes of a file that `load` takes. Calibration files and logs hold some thousand; a node
    /// takes 200 bytes and more, and a blank in a tag makes one.
    static constexpr std::uint64_t largestFile = std::uint64_t{2} << 20;

    XmlDocument();

    /// Replaces the document by a UTF-8 file; gives an `XmlCode`. Line ends become "\n". Throws
    /// what `XmlAttribute::parse` throws.
    int load(std::string_view path);
    /// Writes the document as UTF-8 with CRLF line ends; the file is complete or left as it was.
    /// Gives an `XmlCode`.
    int save(std::string_view path) const;

    /// Replaces the document by the one in `content`; after a failure the nodes before it stay.
    int parseBuffer(std::wstring content);
    /// The document as it stands in a file.
    std::wstring toString() const;

  private:
    void clear();
    int parseChild(XmlCursor& cursor);

    std::shared_ptr<const std::wstring> buffer;  // what was parsed, shared with the nodes
    std::wstring childSources;                   // the children's sources without blanks between
};

}  // namespace tavoren
