// Keeps the orva_core library non-empty while its folders are still being filled, so the
// build graph does not depend on which core sources exist yet.
namespace orva::detail {
extern const int kCoreAnchor = 0;
}  // namespace orva::detail
