#pragma once

#include "CUI/Platform.h"
#include "LauncherFace.h"

// What of the launcher's face has a place of its own, in the order in which Tab goes through it.
enum FaceItem
{
    ItemTitle,
    ItemProduct,
    ItemHelp,
    ItemHelpBullet,
    ItemRun,
    ItemRunBullet,
    ItemSetup,
    ItemSetupBullet,
    ItemExit,
    ItemExitBullet,
    ItemAbout,
    FaceItemCount,
    ItemNone = FaceItemCount
};

struct FaceItemInfo
{
    UINT m_nPlace;    // the entry with its place
    UINT m_nText;     // the entry with its text; 0: it has none
    UINT m_nCommand;  // the entry with its program; 0: it has none
    int m_nLine;      // the hot spot, also of a bullet; HotSpotNone: it is none
    bool m_bBullet;
    const char *m_pszCaption;
};

const FaceItemInfo &FaceItemInfoOf(FaceItem item);
// Of a line its bullet, else ItemNone.
FaceItem BulletOf(FaceItem item);
// The item that an entry is about, or ItemNone.
FaceItem FaceItemOf(UINT nEntry);

// Where it is, in pixels of the face, at most some 16 million of them away. A title is as large as
// `title` says. A line's is what reacts to the mouse.
RECT FaceItemRect(const CLauncherFace &face, const SIZE &title, FaceItem item);
// The item on top at a point, or ItemNone.
FaceItem FaceItemAt(const CLauncherFace &face, const SIZE &title, const POINT &point);
