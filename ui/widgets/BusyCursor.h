// Tells the user that the window is busy, where something takes so long that it does not answer.
#pragma once

namespace murkwell::BusyCursor {

// Shows the waiting cursor until the event loop runs again.
void untilIdle();

} // namespace murkwell::BusyCursor
