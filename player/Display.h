#pragma once

// Whether there is nothing to open a window on, as far as the environment tells before Qt tries.
bool isDisplayMissing();
