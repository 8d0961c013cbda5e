#pragma once

#include "CU/CU.h"
#include "CU/ErrorText.h"
#include "CU/File.h"
#include "CU/Timer.h"
#include "CUI/Bitmap.h"
#include "CUI/CommandMap.h"
#include "Resource.h"

// Loads a picture while the program goes on: a slow disc is read piece by piece, then the picture
// is made of what the system has kept. It tells what it has done as a command, ID_LOADING, at the
// end ID_LOADED.
class CPictureLoader : private CCUTimer
{
public:
    CCUString m_sPath;
    CCUIBitmap m_picture;  // null if it cannot be loaded
    CCUString m_sReason;   // why
    int m_nBits = 0;       // of a pixel in the file
    int m_nPercent = 0;    // that is read

    // Begins, and gives up what is being loaded.
    void Load(const CCUString &sPath)
    {
        m_sPath = sPath;
        m_sReason.Empty();
        if (m_file.Open(sPath, CCUFile::modeRead | CCUFile::shareDenyNone))
            m_file.Read(m_head, sizeof m_head);
        SetAlarm(0);
    }

private:
    void TimeOut(long nNow) override
    {
        static char s_piece[0x10000];
        while (m_file.isOpen() && m_file.Read(s_piece, sizeof s_piece) == sizeof s_piece) {
            if (static_cast<long>(CUGetTime()) - nNow > TURN) {
                SetAlarm(0);
                m_nPercent = static_cast<int>(100. * m_file.GetPosition() / m_file.GetLength());
                CCUICommandMap::Execute(ID_LOADING);
                return;
            }
        }
        m_file.Close();
        m_picture.Load(m_sPath, CUIBMP_FILE | CUIBMP_PALETTE, nullptr);
        if (!m_picture)
            m_sReason = ": " + CUErrorText(GetLastError());
        m_nBits = m_head[14];
        CCUICommandMap::Execute(ID_LOADED);
    }

    static const long TURN = 30;  // milliseconds
    CCUFile m_file;
    WORD m_head[15] = {};  // of the file
};
