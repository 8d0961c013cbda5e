#include "Script/SkinScript.h"

#include "Script/SkinScriptReader.h"

bool CSkinScript::Read(const CByteView &file, const CCUString &sWhere, const CCUString &sFolder,
                       CProblems &problems)
{
    if (!m_text.Read(file)) {
        problems.push_back(CProblem{ProblemError, 0, sWhere,
                                    "The script is in UTF-16 with the high byte first.",
                                    "it cannot be opened; save it in another form"});
        return false;
    }
    return CSkinScriptReader(*this, sWhere, sFolder, problems).Read();
}

int CSkinScript::CountUses(const CCUString &sFile) const
{
    int nUses = 0;
    for (const CScriptPicture &picture : m_pictures)
        nUses += picture.m_sFile.CompareNoCase(sFile) == 0 ? 1 : 0;
    return nUses;
}

std::vector<CSkinTexts> CSkinScript::Texts() const
{
    std::vector<CSkinTexts> all;
    for (const CScriptTable &table : m_tables) {
        CSkinTexts *pTexts = nullptr;
        for (CSkinTexts &texts : all) {
            if (texts.m_nLanguage == table.m_nLanguage)
                pTexts = &texts;
        }
        if (!pTexts) {
            all.push_back(CSkinTexts{table.m_nLanguage, {}});
            pTexts = &all.back();
        }
        for (const CScriptEntry &entry : table.m_entries)
            pTexts->m_entries[entry.m_nID] = entry.m_sText;
    }
    if (all.empty())
        all.push_back(CSkinTexts{LANG_NEUTRAL, {}});
    return all;
}

std::map<CWideText, CWideText> CSkinScript::VersionTexts() const
{
    std::map<CWideText, CWideText> texts;
    for (const CScriptEntry &entry : m_version.m_entries)
        texts[entry.m_sKey] = entry.m_sText;
    return texts;
}
