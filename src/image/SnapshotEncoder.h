// JPEG snapshots (of a published stream or of a media player's frame) as Base64 text for
// script. The one place where the platform split shows: the engine hands over a GDI bitmap on
// Windows (encoded with GDI+, SnapshotEncoder_win.cc) and a B,G,R,A pixel image elsewhere
// (encoded with TurboJPEG, SnapshotEncoder_turbojpeg.cc).
//
// Runs on the engine thread that delivered the snapshot; keeps no state of its own except,
// on Windows, the one-time GDI+ start-up.
#pragma once

#include <cstdint>
#include <string>

#include "image/BgraImageView.h"

#if defined(_WIN32)
struct _GUID;  // CLSID, from <guiddef.h>; declared here so this header needs no <windows.h>
#endif

namespace orva::image {

// The texts script receives in `image` instead of a JPEG; part of the script interface.
inline constexpr char kSnapshotErrorText[] = "snap shot error!";
inline constexpr char kGetImageFailedText[] = "Get image failed!";
inline constexpr char kSaveImageFailedText[] = "Save image failed!";

#if defined(_WIN32)
// The engine's HBITMAP, owned by the engine and valid during its result callback.
using SnapshotImage = void*;
#else
// The engine's pixel image (B,G,R,A, rows top-down), valid during its result callback.
using SnapshotImage = BgraImageView;
#endif

// The snapshot result text: "snap shot error!" when errorCode is not 0 (the image is not
// looked at), otherwise the Base64 of the JPEG file or one of the failure texts:
//  - Windows: "Get image failed!" when the bitmap object, the memory block or the stream
//    over it cannot be made. A bitmap that GDI+ cannot read or save gives the Base64 of what
//    the stream holds, usually the empty text.
//  - elsewhere: "Get image failed!" when the image view is not readable or the TurboJPEG
//    compressor cannot be created, "Save image failed!" when compression fails.
std::string encodeSnapshot(int32_t errorCode, SnapshotImage image);

#if defined(_WIN32)
// GDI+'s image encoder for a MIME type such as L"image/jpeg": copies its class identifier
// to *clsid and answers its position in GDI+'s list, or -1 (clsid untouched) when there is
// none. Starts GDI+ first if this module has not yet done so.
int findImageEncoder(const wchar_t* mimeType, _GUID* clsid);
#endif

}  // namespace orva::image
