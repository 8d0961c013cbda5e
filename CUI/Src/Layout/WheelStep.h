#pragma once

// How many pixels a notch of the wheel scrolls by, as the user has set it, where nPage are seen.
int CUIWheelStep(int nPage);
