#pragma once

#include <stdlib.h>

#include "CU/String.h"

// The beginning of an extended dialog template without menu, class and caption. Controls follow
// behind the name of the face.
struct CUITemplateHead
{
    WORD nVersion;
    WORD nSignature;
    DWORD nHelpID;
    DWORD nExStyle;
    DWORD nStyle;
    WORD nItems;
    WORD nPlace[4];
    WORD nMenu;
    WORD nClass;
    WORD nCaption;
    WORD nPoints;
    WORD nWeight;
    BYTE bItalic;
    BYTE nCharSet;
    WCHAR szFace[LF_FACESIZE];
};

// A control in it, of one of the system's classes, without text. Begins at a multiple of 4 bytes.
struct CUITemplateItem
{
    DWORD nHelpID;
    DWORD nExStyle;
    DWORD nStyle;
    WORD nPlace[4];
    DWORD nID;
    WORD nClassMark;
    WORD nClass;
    WORD nTitle;
    WORD nCreationBytes;
};

// The numbers by which templates name the system's classes.
enum CUITemplateClass : WORD
{
    CUIClassButton = 0x80,
    CUIClassStatic = 0x82
};

// Writes such a template, for dialogs that place their controls by themselves, into memory that is
// large enough: a head, and an item for each control.
class CUITemplateWriter
{
public:
    CUITemplateWriter(void *pMemory, DWORD nStyle, DWORD nExStyle, const LOGFONTA &font,
                      int nPixelsPerInch)
        : m_head(*static_cast<CUITemplateHead *>(pMemory))
    {
        m_head = CUITemplateHead();
        m_head.nVersion = 1;
        m_head.nSignature = 0xFFFF;
        m_head.nExStyle = nExStyle;
        m_head.nStyle = nStyle | DS_SETFONT;
        m_head.nPoints = static_cast<WORD>(MulDiv(abs(font.lfHeight), 72, nPixelsPerInch));
        m_head.nWeight = static_cast<WORD>(font.lfWeight);
        m_head.bItalic = font.lfItalic;
        m_head.nCharSet = font.lfCharSet;
        const int nFace = CUMultiByteToWideString(m_head.szFace, font.lfFaceName, LF_FACESIZE);
        const auto nEnd = reinterpret_cast<UINT_PTR>(m_head.szFace + (nFace > 0 ? nFace : 1));
        m_pItem = reinterpret_cast<CUITemplateItem *>((nEnd + 3) & ~UINT_PTR(3));
    }

    void Add(CUITemplateClass itemClass, DWORD nStyle, DWORD nExStyle, DWORD nID)
    {
        *m_pItem++ = {0, nExStyle, nStyle | WS_CHILD | WS_VISIBLE, {}, nID, 0xFFFF, itemClass,
                      0, 0};
        ++m_head.nItems;
    }

private:
    CUITemplateHead &m_head;
    CUITemplateItem *m_pItem;
};
