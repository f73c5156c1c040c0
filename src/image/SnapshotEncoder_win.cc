// Snapshot encoding on Windows: GDI+ (flat interface) writes the engine's HBITMAP as a JPEG
// into a COM stream over movable global memory.
//
// GDI+ start-up: the host process (Electron) is not required to have started GDI+, and every
// GDI+ call fails before it is. So this module starts GDI+ itself, once, on the first
// snapshot (never from DllMain: the start-up creates a thread), and never shuts it down:
// GdiplusShutdown at unload would run under the loader lock, and the host or another module
// may still be using GDI+. Start-ups are counted by GDI+, so a host that starts it too is not
// disturbed.
#include "image/SnapshotEncoder.h"

#if defined(_WIN32)

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#include <objidl.h>
#include <gdiplus.h>

#include <cstdlib>
#include <cwchar>
#include <memory>

#include "image/SnapshotBase64.h"

namespace orva::image {
namespace {

namespace gdip = Gdiplus::DllExports;

void startGdiplusOnce() {
  // A function-local static: thread-safe, and the start-up is tried only once even when
  // it fails (every later GDI+ call then fails and the documented texts follow).
  static const bool started = [] {
    const Gdiplus::GdiplusStartupInput input;  // version 1, with GDI+'s background thread
    ULONG_PTR token = 0;
    return Gdiplus::GdiplusStartup(&token, &input, nullptr) == Gdiplus::Ok;
  }();
  (void)started;
}

// The GDI+ bitmap of one snapshot and the status of the last GDI+ call on it. Like GDI+'s own
// C++ objects it lives in GdipAlloc memory, and deleting it disposes the image and hands the
// memory back with GdipFree.
class SnapshotBitmap {
 public:
  // Non-throwing: a failed GdipAlloc makes `new` yield null instead of throwing through an
  // engine thread.
  static void* operator new(size_t size) noexcept { return gdip::GdipAlloc(size); }
  static void operator delete(void* memory) noexcept { gdip::GdipFree(memory); }

  explicit SnapshotBitmap(HBITMAP bitmap) {
    lastStatus_ = gdip::GdipCreateBitmapFromHBITMAP(bitmap, nullptr, &bitmap_);
  }
  ~SnapshotBitmap() {
    if (bitmap_ != nullptr) gdip::GdipDisposeImage(bitmap_);
  }
  SnapshotBitmap(const SnapshotBitmap&) = delete;
  SnapshotBitmap& operator=(const SnapshotBitmap&) = delete;

  void saveTo(IStream* stream, const CLSID* encoder) {
    lastStatus_ = gdip::GdipSaveImageToStream(bitmap_, stream, encoder, nullptr);
  }

 private:
  Gdiplus::GpBitmap* bitmap_ = nullptr;
  Gdiplus::GpStatus lastStatus_ = Gdiplus::Ok;
};

struct StreamRelease {
  void operator()(IStream* stream) const { stream->Release(); }
};

struct EncoderListFree {
  void operator()(void* list) const { std::free(list); }
};

}  // namespace

int findImageEncoder(const wchar_t* mimeType, _GUID* clsid) {
  startGdiplusOnce();
  UINT count = 0;
  UINT bytes = 0;
  gdip::GdipGetImageEncodersSize(&count, &bytes);
  if (bytes == 0) return -1;
  // malloc's alignment suits the ImageCodecInfo records at the start of the block.
  const std::unique_ptr<void, EncoderListFree> list(std::malloc(bytes));
  if (!list) return -1;
  auto* encoders = static_cast<Gdiplus::ImageCodecInfo*>(list.get());
  if (gdip::GdipGetImageEncoders(count, bytes, encoders) != Gdiplus::Ok) return -1;
  for (UINT i = 0; i < count; ++i) {
    if (encoders[i].MimeType != nullptr && std::wcscmp(encoders[i].MimeType, mimeType) == 0) {
      *clsid = encoders[i].Clsid;
      return static_cast<int>(i);
    }
  }
  return -1;
}

std::string encodeSnapshot(int32_t errorCode, SnapshotImage image) {
  std::string text = kSnapshotErrorText;
  if (errorCode != 0) return text;

  // The lookup's answer is not tested: with no JPEG encoder the save below fails with the
  // zero identifier, and the checks after it decide the text.
  CLSID jpegEncoder{};
  findImageEncoder(L"image/jpeg", &jpegEncoder);

  const std::unique_ptr<SnapshotBitmap> bitmap(new SnapshotBitmap(static_cast<HBITMAP>(image)));
  if (!bitmap) {  // GdipAlloc failed: nothing to read the image into
    text = kGetImageFailedText;
    return text;
  }

  // An empty movable block that the stream grows while GDI+ writes.
  HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, 0);
  if (block == nullptr) {
    text = kGetImageFailedText;
    return text;
  }
  IStream* rawStream = nullptr;
  CreateStreamOnHGlobal(block, TRUE, &rawStream);
  if (rawStream == nullptr) {
    GlobalFree(block);  // not owned by any stream
    text = kGetImageFailedText;
    return text;
  }
  // Released when the text is made, which frees the block too (delete-on-release). Nothing
  // else is freed: the locked address below belongs to the block, and keeping the stream
  // would leak the block with every snapshot.
  const std::unique_ptr<IStream, StreamRelease> stream(rawStream);

  // The save's status stays in the bitmap object and the check below tests the stream, not
  // the status: after a failed save script receives the Base64 of whatever the stream holds
  // (usually the empty text), never an error text, and keeps doing so.
  bitmap->saveTo(stream.get(), &jpegEncoder);
  if (!stream) {
    text = kSaveImageFailedText;
    return text;
  }

  // Lock and unlock at once, then read: the address stays valid because only this thread
  // uses the stream, and nothing reallocates the block until the stream is released.
  const auto* bytes = static_cast<const uint8_t*>(GlobalLock(block));
  GlobalUnlock(block);
  // The stream's size is what GDI+ wrote; the block may be larger on Windows.
  STATSTG stat{};
  uint64_t written = 0;
  if (stream->Stat(&stat, STATFLAG_NONAME) == S_OK) written = stat.cbSize.QuadPart;
  const uint64_t blockSize = GlobalSize(block);
  if (written > blockSize) written = blockSize;
  if (bytes == nullptr) written = 0;  // a zero-size block has no address
  text = snapshotBase64(bytes, static_cast<size_t>(written));
  return text;
}

}  // namespace orva::image

#endif  // _WIN32
