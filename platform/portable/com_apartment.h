/// Apartments of threads, for the layer's own use.
#pragma once

namespace platform {

/// Whether COM is initialised on the calling thread.
bool ComInitializedHere() noexcept;

}  // namespace platform
