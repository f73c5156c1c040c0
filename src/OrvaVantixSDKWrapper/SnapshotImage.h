// The engine's snapshot image handle as the snapshot encoder's input (image/SnapshotEncoder.h).
//
// Snapshot results (publish stream, played stream, media player) carry the engine's handle in
// their event record as `void* image`: an HBITMAP on Windows, a `const orva_pixel_image*`
// elsewhere. The handle is the engine's and is valid only while its result callback runs, so
// the completion must encode on that engine thread; this turns the handle into what the
// encoder reads, without copying pixels.
#pragma once

#include "image/SnapshotEncoder.h"

namespace orva::sdk {

// Windows: the HBITMAP as it is. Elsewhere: a view of the pixel image's B,G,R,A rows; an
// empty view (which the encoder answers with "Get image failed!") for a null handle or an
// image in any other pixel format.
image::SnapshotImage snapshotImageOf(void* handle);

}  // namespace orva::sdk
