#pragma once

namespace tavoren {

/// A process-wide object that outlives static destruction, so that other threads and the
/// destructors of other such objects may use it to the very end.
template <typename T>
union NeverDestroyed {
    NeverDestroyed() : object() {}
    ~NeverDestroyed() {}  // NOLINT(modernize-use-equals-default): a defaulted one would be deleted
    NeverDestroyed(const NeverDestroyed&) = delete;
    NeverDestroyed& operator=(const NeverDestroyed&) = delete;

    T object;
};

}  // namespace tavoren
