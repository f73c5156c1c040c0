// Snapshot encoding outside Windows: TurboJPEG over the engine's B,G,R,A pixel image.
#include "image/SnapshotEncoder.h"

#if !defined(_WIN32)

#include <turbojpeg.h>

#include <memory>

#include "image/SnapshotBase64.h"

namespace orva::image {
namespace {

// Close to what GDI+ gives on Windows by default, with 4:2:0 chroma as usual for photos.
constexpr int kJpegQuality = 90;

struct TjHandleClose {
  void operator()(void* handle) const { tjDestroy(handle); }
};
using TjHandle = std::unique_ptr<void, TjHandleClose>;

struct TjBufferFree {
  void operator()(unsigned char* buffer) const { tjFree(buffer); }
};
using TjBuffer = std::unique_ptr<unsigned char, TjBufferFree>;

}  // namespace

std::string encodeSnapshot(int32_t errorCode, SnapshotImage image) {
  std::string text = kSnapshotErrorText;
  if (errorCode != 0) return text;
  if (!isReadable(image)) {
    text = kGetImageFailedText;
    return text;
  }
  // A compressor per snapshot: snapshots are rare, and this keeps the encoder stateless and
  // safe on any engine thread.
  const TjHandle compressor(tjInitCompress());
  if (!compressor) {
    text = kGetImageFailedText;
    return text;
  }
  unsigned char* jpegBytes = nullptr;  // allocated by TurboJPEG, owned by `jpeg` below
  unsigned long jpegSize = 0;
  const int status = tjCompress2(compressor.get(), image.data, image.width, image.stride,
                                 image.height, TJPF_BGRA, &jpegBytes, &jpegSize, TJSAMP_420,
                                 kJpegQuality, 0);
  const TjBuffer jpeg(jpegBytes);
  if (status != 0 || !jpeg || jpegSize == 0) {
    text = kSaveImageFailedText;
    return text;
  }
  text = snapshotBase64(jpeg.get(), jpegSize);
  return text;
}

}  // namespace orva::image

#endif  // !_WIN32
