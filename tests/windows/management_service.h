/// Puts the layer's management service in the place of the system's, in this process.
#pragma once

namespace platform {

/// From here on locators created in the calling thread's apartment reach the machine in use. The thread must be in an
/// apartment. Leaving it takes the service away.
void ReplaceManagementService();

}  // namespace platform
