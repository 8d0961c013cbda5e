#pragma once

// The name of the property that leads to a control window's PropData. Not g_sControlWindowProp,
// which may be destroyed before control windows that are globals.
const char CUI_CONTROL_PROPERTY[] = "pzl-ControlWindow";
