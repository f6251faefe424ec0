/// The management service of this process: the layer's own, in the place of the system's.
#pragma once

namespace platform {

/// From here on locators that are created in the calling thread's apartment reach the machine in use. The thread is in
/// an apartment already, and whoever left it would take the service away.
void ReplaceManagementService();

}  // namespace platform
