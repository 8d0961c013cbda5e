#include "Script/ScriptSymbols.h"

#include <stdlib.h>

#include "CUI/Platform.h"
#include "Resource.h"

namespace {

struct CKnownName
{
    const char *m_pszName;
    int m_nValue;
};

#define NAME(name)  \
    {               \
#name, name \
    }

// The launcher's script has these from its own header, from the system's and from its compiler.
const CKnownName KNOWN_NAMES[] = {
    {"RC_INVOKED", 1},
    {"_WIN32", 1},
    NAME(IDD_AUTORUN),
    NAME(IDI_AUTORUN),
    NAME(IDB_BACKGROUND),
    NAME(IDB_PRODUCT),
    NAME(IDB_BULLET),
    NAME(IDS_SETUP),
    NAME(IDS_EXIT),
    NAME(IDS_EXIT_POS),
    NAME(IDS_SETUP_POS),
    NAME(IDS_ABOUT_RECT),
    NAME(IDS_CAPTION),
    NAME(IDS_SETUP_COMMAND),
    NAME(IDS_HIGHLIGHT_COLOR),
    NAME(IDS_SPARE_COLOR),
    NAME(IDS_ITEM_FONT),
    NAME(IDS_ABOUT_FONT),
    NAME(IDS_RUN),
    NAME(IDS_HELP),
    NAME(IDS_RUN_POS),
    NAME(IDS_HELP_POS),
    NAME(IDS_RUN_COMMAND),
    NAME(IDS_HELP_COMMAND),
    NAME(IDS_TITLE),
    NAME(IDS_TITLE_POS),
    NAME(IDS_TITLE_FONT),
    NAME(IDS_PRODUCT_POS),
    NAME(IDS_PRODUCT_ICON_POS),
    NAME(IDS_ABOUT),
    NAME(IDS_HELP_ICON_POS),
    NAME(IDS_RUN_ICON_POS),
    NAME(IDS_SETUP_ICON_POS),
    NAME(IDS_EXIT_ICON_POS),
    NAME(IDS_DISC_LABEL),
    NAME(LANG_NEUTRAL),
    NAME(LANG_AFRIKAANS),
    NAME(LANG_ALBANIAN),
    NAME(LANG_ARABIC),
    NAME(LANG_BASQUE),
    NAME(LANG_BELARUSIAN),
    NAME(LANG_BULGARIAN),
    NAME(LANG_CATALAN),
    NAME(LANG_CHINESE),
    NAME(LANG_CROATIAN),
    NAME(LANG_CZECH),
    NAME(LANG_DANISH),
    NAME(LANG_DUTCH),
    NAME(LANG_ENGLISH),
    NAME(LANG_ESTONIAN),
    NAME(LANG_FAEROESE),
    NAME(LANG_FARSI),
    NAME(LANG_FINNISH),
    NAME(LANG_FRENCH),
    NAME(LANG_GERMAN),
    NAME(LANG_GREEK),
    NAME(LANG_HEBREW),
    NAME(LANG_HINDI),
    NAME(LANG_HUNGARIAN),
    NAME(LANG_ICELANDIC),
    NAME(LANG_INDONESIAN),
    NAME(LANG_ITALIAN),
    NAME(LANG_JAPANESE),
    NAME(LANG_KOREAN),
    NAME(LANG_LATVIAN),
    NAME(LANG_LITHUANIAN),
    NAME(LANG_MACEDONIAN),
    NAME(LANG_MALAY),
    NAME(LANG_NORWEGIAN),
    NAME(LANG_POLISH),
    NAME(LANG_PORTUGUESE),
    NAME(LANG_ROMANIAN),
    NAME(LANG_RUSSIAN),
    NAME(LANG_SERBIAN),
    NAME(LANG_SLOVAK),
    NAME(LANG_SLOVENIAN),
    NAME(LANG_SPANISH),
    NAME(LANG_SWAHILI),
    NAME(LANG_SWEDISH),
    NAME(LANG_THAI),
    NAME(LANG_TURKISH),
    NAME(LANG_UKRAINIAN),
    NAME(LANG_URDU),
    NAME(LANG_VIETNAMESE),
    NAME(SUBLANG_NEUTRAL),
    NAME(SUBLANG_AFRIKAANS_SOUTH_AFRICA),
    NAME(SUBLANG_ALBANIAN_ALBANIA),
    NAME(SUBLANG_ARABIC_SAUDI_ARABIA),
    NAME(SUBLANG_ARABIC_IRAQ),
    NAME(SUBLANG_ARABIC_EGYPT),
    NAME(SUBLANG_ARABIC_LIBYA),
    NAME(SUBLANG_ARABIC_ALGERIA),
    NAME(SUBLANG_ARABIC_MOROCCO),
    NAME(SUBLANG_ARABIC_TUNISIA),
    NAME(SUBLANG_ARABIC_OMAN),
    NAME(SUBLANG_ARABIC_YEMEN),
    NAME(SUBLANG_ARABIC_SYRIA),
    NAME(SUBLANG_ARABIC_JORDAN),
    NAME(SUBLANG_ARABIC_LEBANON),
    NAME(SUBLANG_ARABIC_KUWAIT),
    NAME(SUBLANG_ARABIC_UAE),
    NAME(SUBLANG_ARABIC_BAHRAIN),
    NAME(SUBLANG_ARABIC_QATAR),
    NAME(SUBLANG_BASQUE_BASQUE),
    NAME(SUBLANG_BELARUSIAN_BELARUS),
    NAME(SUBLANG_BULGARIAN_BULGARIA),
    NAME(SUBLANG_CATALAN_CATALAN),
    NAME(SUBLANG_CHINESE_TRADITIONAL),
    NAME(SUBLANG_CHINESE_SIMPLIFIED),
    NAME(SUBLANG_CHINESE_HONGKONG),
    NAME(SUBLANG_CHINESE_SINGAPORE),
    NAME(SUBLANG_CHINESE_MACAU),
    NAME(SUBLANG_CZECH_CZECH_REPUBLIC),
    NAME(SUBLANG_CROATIAN_CROATIA),
    NAME(SUBLANG_CROATIAN_BOSNIA_HERZEGOVINA_LATIN),
    NAME(SUBLANG_DANISH_DENMARK),
    NAME(SUBLANG_DUTCH),
    NAME(SUBLANG_DUTCH_BELGIAN),
    NAME(SUBLANG_ENGLISH_US),
    NAME(SUBLANG_ENGLISH_UK),
    NAME(SUBLANG_ENGLISH_AUS),
    NAME(SUBLANG_ENGLISH_CAN),
    NAME(SUBLANG_ENGLISH_NZ),
    NAME(SUBLANG_ENGLISH_IRELAND),
    NAME(SUBLANG_ENGLISH_EIRE),
    NAME(SUBLANG_ENGLISH_SOUTH_AFRICA),
    NAME(SUBLANG_ENGLISH_JAMAICA),
    NAME(SUBLANG_ENGLISH_CARIBBEAN),
    NAME(SUBLANG_ENGLISH_BELIZE),
    NAME(SUBLANG_ENGLISH_TRINIDAD),
    NAME(SUBLANG_ENGLISH_ZIMBABWE),
    NAME(SUBLANG_ENGLISH_PHILIPPINES),
    NAME(SUBLANG_ENGLISH_INDIA),
    NAME(SUBLANG_ENGLISH_MALAYSIA),
    NAME(SUBLANG_ENGLISH_SINGAPORE),
    NAME(SUBLANG_ESTONIAN_ESTONIA),
    NAME(SUBLANG_FAEROESE_FAROE_ISLANDS),
    NAME(SUBLANG_FINNISH_FINLAND),
    NAME(SUBLANG_FRENCH),
    NAME(SUBLANG_FRENCH_BELGIAN),
    NAME(SUBLANG_FRENCH_CANADIAN),
    NAME(SUBLANG_FRENCH_SWISS),
    NAME(SUBLANG_FRENCH_LUXEMBOURG),
    NAME(SUBLANG_FRENCH_MONACO),
    NAME(SUBLANG_GERMAN),
    NAME(SUBLANG_GERMAN_SWISS),
    NAME(SUBLANG_GERMAN_AUSTRIAN),
    NAME(SUBLANG_GERMAN_LUXEMBOURG),
    NAME(SUBLANG_GERMAN_LIECHTENSTEIN),
    NAME(SUBLANG_GREEK_GREECE),
    NAME(SUBLANG_HEBREW_ISRAEL),
    NAME(SUBLANG_HINDI_INDIA),
    NAME(SUBLANG_HUNGARIAN_HUNGARY),
    NAME(SUBLANG_ICELANDIC_ICELAND),
    NAME(SUBLANG_INDONESIAN_INDONESIA),
    NAME(SUBLANG_ITALIAN),
    NAME(SUBLANG_ITALIAN_SWISS),
    NAME(SUBLANG_JAPANESE_JAPAN),
    NAME(SUBLANG_KOREAN),
    NAME(SUBLANG_LATVIAN_LATVIA),
    NAME(SUBLANG_LITHUANIAN),
    NAME(SUBLANG_MACEDONIAN_MACEDONIA),
    NAME(SUBLANG_MALAY_MALAYSIA),
    NAME(SUBLANG_MALAY_BRUNEI_DARUSSALAM),
    NAME(SUBLANG_MALAYALAM_INDIA),
    NAME(SUBLANG_NORWEGIAN_BOKMAL),
    NAME(SUBLANG_NORWEGIAN_NYNORSK),
    NAME(SUBLANG_POLISH_POLAND),
    NAME(SUBLANG_PORTUGUESE_BRAZILIAN),
    NAME(SUBLANG_PORTUGUESE),
    NAME(SUBLANG_ROMANIAN_ROMANIA),
    NAME(SUBLANG_RUSSIAN_RUSSIA),
    NAME(SUBLANG_SERBIAN_LATIN),
    NAME(SUBLANG_SERBIAN_CYRILLIC),
    NAME(SUBLANG_SERBIAN_BOSNIA_HERZEGOVINA_LATIN),
    NAME(SUBLANG_SERBIAN_BOSNIA_HERZEGOVINA_CYRILLIC),
    NAME(SUBLANG_SERBIAN_MONTENEGRO_LATIN),
    NAME(SUBLANG_SERBIAN_MONTENEGRO_CYRILLIC),
    NAME(SUBLANG_SERBIAN_SERBIA_LATIN),
    NAME(SUBLANG_SERBIAN_SERBIA_CYRILLIC),
    NAME(SUBLANG_SLOVAK_SLOVAKIA),
    NAME(SUBLANG_SLOVENIAN_SLOVENIA),
    NAME(SUBLANG_SPANISH),
    NAME(SUBLANG_SPANISH_MEXICAN),
    NAME(SUBLANG_SPANISH_MODERN),
    NAME(SUBLANG_SPANISH_GUATEMALA),
    NAME(SUBLANG_SPANISH_COSTA_RICA),
    NAME(SUBLANG_SPANISH_PANAMA),
    NAME(SUBLANG_SPANISH_DOMINICAN_REPUBLIC),
    NAME(SUBLANG_SPANISH_VENEZUELA),
    NAME(SUBLANG_SPANISH_COLOMBIA),
    NAME(SUBLANG_SPANISH_PERU),
    NAME(SUBLANG_SPANISH_ARGENTINA),
    NAME(SUBLANG_SPANISH_ECUADOR),
    NAME(SUBLANG_SPANISH_CHILE),
    NAME(SUBLANG_SPANISH_URUGUAY),
    NAME(SUBLANG_SPANISH_PARAGUAY),
    NAME(SUBLANG_SPANISH_BOLIVIA),
    NAME(SUBLANG_SPANISH_EL_SALVADOR),
    NAME(SUBLANG_SPANISH_HONDURAS),
    NAME(SUBLANG_SPANISH_NICARAGUA),
    NAME(SUBLANG_SPANISH_PUERTO_RICO),
    NAME(SUBLANG_SPANISH_US),
    NAME(SUBLANG_SWAHILI_KENYA),
    NAME(SUBLANG_SWEDISH),
    NAME(SUBLANG_SWEDISH_FINLAND),
    NAME(SUBLANG_THAI_THAILAND),
    NAME(SUBLANG_TURKISH_TURKEY),
    NAME(SUBLANG_UKRAINIAN_UKRAINE),
    NAME(SUBLANG_URDU_PAKISTAN),
    NAME(SUBLANG_URDU_INDIA),
    NAME(SUBLANG_VIETNAMESE_VIETNAM),
    NAME(SUBLANG_DEFAULT),
    NAME(SUBLANG_SYS_DEFAULT),
};

struct COperator
{
    const char *m_pszText;
    int m_nRank;
};

// The longer ones first.
const COperator OPERATORS[] = {
    {"||", 1}, {"&&", 2}, {"==", 6}, {"!=", 6}, {"<=", 7}, {">=", 7}, {"<<", 8}, {">>", 8},
    {"|", 3},  {"^", 4},  {"&", 5},  {"<", 7},  {">", 7},  {"+", 9},  {"-", 9},  {"*", 10},
};
const int DEEPEST = 32;

bool IsWordChar(char ch)
{
    return (ch >= 'A' && ch <= 'Z') || (ch >= 'a' && ch <= 'z') || (ch >= '0' && ch <= '9') ||
           ch == '_';
}

long Apply(const char *pszOperator, long nLeft, long nRight)
{
    const unsigned long nA = static_cast<unsigned long>(nLeft);
    const unsigned long nB = static_cast<unsigned long>(nRight);
    switch (pszOperator[0]) {
    case '|': return pszOperator[1] ? nLeft || nRight : nLeft | nRight;
    case '&': return pszOperator[1] ? nLeft && nRight : nLeft & nRight;
    case '^': return nLeft ^ nRight;
    case '=': return nLeft == nRight;
    case '!': return nLeft != nRight;
    case '+': return static_cast<long>(nA + nB);
    case '-': return static_cast<long>(nA - nB);
    case '*': return static_cast<long>(nA * nB);
    default: break;
    }
    if (pszOperator[1] == pszOperator[0])
        return static_cast<long>(pszOperator[0] == '<' ? nA << (nB & 31) : nA >> (nB & 31));
    const bool bEqual = pszOperator[1] == '=' && nLeft == nRight;
    return bEqual || (pszOperator[0] == '<' ? nLeft < nRight : nLeft > nRight);
}

class CExpression
{
public:
    CExpression(const CScriptSymbols &symbols, const char *psz, bool bUnknown)
        : m_symbols(symbols), m_psz(psz), m_bUnknown(bUnknown), m_nDepth(0)
    {
    }
    bool Read(long &nValue) { return ReadRank(1, nValue) && !*SkipSpace(); }

private:
    const char *SkipSpace()
    {
        while (*m_psz == ' ' || *m_psz == '\t')
            ++m_psz;
        return m_psz;
    }

    const COperator *Operator()
    {
        SkipSpace();
        for (const COperator &op : OPERATORS) {
            if (strncmp(m_psz, op.m_pszText, strlen(op.m_pszText)) == 0)
                return &op;
        }
        return nullptr;
    }

    bool ReadRank(int nRank, long &nValue)
    {
        if (!ReadUnary(nValue))
            return false;
        for (;;) {
            const COperator *const pOperator = Operator();
            if (!pOperator || pOperator->m_nRank < nRank)
                return true;
            m_psz += strlen(pOperator->m_pszText);
            long nRight = 0;
            if (!ReadRank(pOperator->m_nRank + 1, nRight))
                return false;
            nValue = Apply(pOperator->m_pszText, nValue, nRight);
        }
    }

    bool ReadUnary(long &nValue)
    {
        // Whoever nests deeper than that means no number.
        if (++m_nDepth > DEEPEST)
            return false;
        const char ch = *SkipSpace();
        bool bRead = true;
        if (ch == '!' || ch == '~' || ch == '-' || ch == '+') {
            ++m_psz;
            bRead = ReadUnary(nValue);
            if (ch == '-')
                nValue = static_cast<long>(0UL - static_cast<unsigned long>(nValue));
            else if (ch != '+')
                nValue = ch == '!' ? !nValue : ~nValue;
        } else if (ch == '(') {
            ++m_psz;
            bRead = ReadRank(1, nValue) && *SkipSpace() == ')';
            m_psz += bRead ? 1 : 0;
        } else {
            bRead = ReadWord(nValue);
        }
        --m_nDepth;
        return bRead;
    }

    CCUString Word()
    {
        const char *const pszStart = SkipSpace();
        while (IsWordChar(*m_psz))
            ++m_psz;
        return CCUString(pszStart, static_cast<int>(m_psz - pszStart));
    }

    bool ReadWord(long &nValue)
    {
        const CCUString sWord = Word();
        if (sWord.IsEmpty())
            return false;
        if (sWord[0] >= '0' && sWord[0] <= '9')
            return ReadNumber(sWord, nValue);
        if (sWord == "defined" && m_bUnknown)
            return ReadDefined(nValue);
        nValue = 0;
        if (m_symbols.IsDefined(sWord))
            return m_symbols.Find(sWord, nValue);
        return m_bUnknown;
    }

    static bool ReadNumber(const CCUString &sWord, long &nValue)
    {
        char *pszEnd = nullptr;
        nValue = static_cast<long>(strtoul(sWord, &pszEnd, 0));
        while (*pszEnd && strchr("lLuU", *pszEnd))
            ++pszEnd;
        return !*pszEnd;
    }

    bool ReadDefined(long &nValue)
    {
        const bool bBrackets = *SkipSpace() == '(';
        m_psz += bBrackets ? 1 : 0;
        const CCUString sName = Word();
        nValue = m_symbols.IsDefined(sName);
        if (bBrackets && *SkipSpace() != ')')
            return false;
        m_psz += bBrackets ? 1 : 0;
        return !sName.IsEmpty();
    }

    const CScriptSymbols &m_symbols;
    const char *m_psz;
    bool m_bUnknown;
    int m_nDepth;
};

}  // namespace

void CScriptSymbols::Define(const CCUString &sName, const CCUString &sMeaning)
{
    CValue value = {ValueUnknown, 0};
    if (Evaluate(sMeaning, false, value.m_nValue))
        value.m_kind = ValueNumber;
    m_values[sName] = value;
}

void CScriptSymbols::Undefine(const CCUString &sName)
{
    m_values[sName] = CValue{ValueNone, 0};
}

CScriptSymbols::CValue CScriptSymbols::Value(const CCUString &sName) const
{
    const auto value = m_values.find(sName);
    if (value != m_values.end())
        return value->second;
    for (const CKnownName &name : KNOWN_NAMES) {
        if (sName == name.m_pszName)
            return CValue{ValueNumber, name.m_nValue};
    }
    return CValue{ValueNone, 0};
}

bool CScriptSymbols::Find(const CCUString &sName, long &nValue) const
{
    const CValue value = Value(sName);
    if (value.m_kind == ValueNumber)
        nValue = value.m_nValue;
    return value.m_kind == ValueNumber;
}

CCUString CScriptSymbols::NameOf(const char *pszPrefix, UINT nValue) const
{
    const size_t nPrefix = strlen(pszPrefix);
    const long nWanted = static_cast<long>(nValue);
    for (const auto &value : m_values) {
        if (value.second.m_kind == ValueNumber && value.second.m_nValue == nWanted &&
            strncmp(value.first, pszPrefix, nPrefix) == 0)
            return value.first;
    }
    for (const CKnownName &name : KNOWN_NAMES) {
        if (name.m_nValue == nWanted && strncmp(name.m_pszName, pszPrefix, nPrefix) == 0 &&
            !m_values.count(name.m_pszName))
            return name.m_pszName;
    }
    return "";
}

bool CScriptSymbols::Evaluate(const CCUString &sExpression, bool bUnknown, long &nValue) const
{
    return CExpression(*this, sExpression, bUnknown).Read(nValue);
}
