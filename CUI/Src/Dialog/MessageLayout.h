#pragma once

#include "Dialog/MessageContent.h"

// Gives the box and its controls, which have their fonts and texts, their sizes and places. A text
// that is too long for the screen gets another control, which scrolls.
void CUIArrangeMessage(HWND hBox, const CCUIMessageContent &content);
