#include "File/Sha256.h"

#include <cpuid.h>
#include <immintrin.h>
#include <string.h>

#include <algorithm>

namespace {

const DWORD FIRST_STATE[] = {0x6A09E667, 0xBB67AE85, 0x3C6EF372, 0xA54FF53A,
                             0x510E527F, 0x9B05688C, 0x1F83D9AB, 0x5BE0CD19};

alignas(16) const DWORD ROUND_CONSTANTS[] = {
    0x428A2F98, 0x71374491, 0xB5C0FBCF, 0xE9B5DBA5, 0x3956C25B, 0x59F111F1, 0x923F82A4, 0xAB1C5ED5,
    0xD807AA98, 0x12835B01, 0x243185BE, 0x550C7DC3, 0x72BE5D74, 0x80DEB1FE, 0x9BDC06A7, 0xC19BF174,
    0xE49B69C1, 0xEFBE4786, 0x0FC19DC6, 0x240CA1CC, 0x2DE92C6F, 0x4A7484AA, 0x5CB0A9DC, 0x76F988DA,
    0x983E5152, 0xA831C66D, 0xB00327C8, 0xBF597FC7, 0xC6E00BF3, 0xD5A79147, 0x06CA6351, 0x14292967,
    0x27B70A85, 0x2E1B2138, 0x4D2C6DFC, 0x53380D13, 0x650A7354, 0x766A0ABB, 0x81C2C92E, 0x92722C85,
    0xA2BFE8A1, 0xA81A664B, 0xC24B8B70, 0xC76C51A3, 0xD192E819, 0xD6990624, 0xF40E3585, 0x106AA070,
    0x19A4C116, 0x1E376C08, 0x2748774C, 0x34B0BCB5, 0x391C0CB3, 0x4ED8AA4A, 0x5B9CCA4F, 0x682E6FF3,
    0x748F82EE, 0x78A5636F, 0x84C87814, 0x8CC70208, 0x90BEFFFA, 0xA4506CEB, 0xBEF9A3F7, 0xC67178F2};

const int ROUNDS = 64;

inline DWORD Turn(DWORD n, int nBits)
{
    return n >> nBits | n << (32 - nBits);
}

inline DWORD BigEndian(const BYTE *p)
{
    return static_cast<DWORD>(p[0]) << 24 | static_cast<DWORD>(p[1]) << 16 |
           static_cast<DWORD>(p[2]) << 8 | p[3];
}

// One round. The eight words change their names from round to round instead of their places.
inline void Round(DWORD a, DWORD b, DWORD c, DWORD &d, DWORD e, DWORD f, DWORD g, DWORD &h,
                  DWORD nWord)
{
    h += (Turn(e, 6) ^ Turn(e, 11) ^ Turn(e, 25)) + (g ^ (e & (f ^ g))) + nWord;
    d += h;
    h += (Turn(a, 2) ^ Turn(a, 13) ^ Turn(a, 22)) + ((a & b) | (c & (a | b)));
}

inline void AddBlock(DWORD *pState, const BYTE *pBlock)
{
    DWORD words[16];
    for (int i = 0; i < 16; ++i)
        words[i] = BigEndian(pBlock + 4 * i);
    DWORD s[8];
    memcpy(s, pState, sizeof s);
    for (int n = 0; n < ROUNDS; n += 8) {
        for (int i = n; n >= 16 && i < n + 8; ++i) {
            const DWORD nOld = words[(i + 1) & 15];
            const DWORD nNew = words[(i + 14) & 15];
            words[i & 15] += (Turn(nOld, 7) ^ Turn(nOld, 18) ^ nOld >> 3) + words[(i + 9) & 15] +
                             (Turn(nNew, 17) ^ Turn(nNew, 19) ^ nNew >> 10);
        }
        const DWORD *const k = ROUND_CONSTANTS + n;
        const DWORD *const w = words + (n & 15);
        Round(s[0], s[1], s[2], s[3], s[4], s[5], s[6], s[7], k[0] + w[0]);
        Round(s[7], s[0], s[1], s[2], s[3], s[4], s[5], s[6], k[1] + w[1]);
        Round(s[6], s[7], s[0], s[1], s[2], s[3], s[4], s[5], k[2] + w[2]);
        Round(s[5], s[6], s[7], s[0], s[1], s[2], s[3], s[4], k[3] + w[3]);
        Round(s[4], s[5], s[6], s[7], s[0], s[1], s[2], s[3], k[4] + w[4]);
        Round(s[3], s[4], s[5], s[6], s[7], s[0], s[1], s[2], k[5] + w[5]);
        Round(s[2], s[3], s[4], s[5], s[6], s[7], s[0], s[1], k[6] + w[6]);
        Round(s[1], s[2], s[3], s[4], s[5], s[6], s[7], s[0], k[7] + w[7]);
    }
    for (int i = 0; i < 8; ++i)
        pState[i] += s[i];
}

}  // namespace

CSha256::CSha256() : m_nSize(0), m_pAddBlocks(HasShaInstructions() ? AddBlocksBySha : AddBlocks)
{
    memcpy(m_state, FIRST_STATE, sizeof m_state);
}

void CSha256::AddBlocks(DWORD *pState, const BYTE *p, size_t nBlocks)
{
    for (; nBlocks > 0; --nBlocks, p += BLOCK)
        AddBlock(pState, p);
}

bool CSha256::HasShaInstructions()
{
    // Systems that do not know these registers do not keep them either; all that run on such
    // processors do, but for Windows 95 and NT 4.
    unsigned int a = 0;
    unsigned int b = 0;
    unsigned int c = 0;
    unsigned int d = 0;
    const bool bKept = (GetVersion() & 0xFF) >= 5;
    const bool bShuffles = __get_cpuid(1, &a, &b, &c, &d) && (c & bit_SSE4_1) && (c & bit_SSSE3);
    return bKept && bShuffles && __get_cpuid_count(7, 0, &a, &b, &c, &d) && (b & bit_SHA);
}

// The system calls us with a stack that is aligned to 4 bytes; these registers want 16.
__attribute__((target("sha,sse4.1,ssse3"), force_align_arg_pointer)) void CSha256::AddBlocksBySha(
    DWORD *pState, const BYTE *p, size_t nBlocks)
{
    const __m128i order = _mm_set_epi64x(0x0C0D0E0F08090A0B, 0x0405060700010203);
    // The instructions want the words as ABEF and CDGH.
    const __m128i low =
        _mm_shuffle_epi32(_mm_loadu_si128(reinterpret_cast<__m128i *>(pState)), 0xB1);
    const __m128i high =
        _mm_shuffle_epi32(_mm_loadu_si128(reinterpret_cast<__m128i *>(pState + 4)), 0x1B);
    __m128i abef = _mm_alignr_epi8(low, high, 8);
    __m128i cdgh = _mm_blend_epi16(high, low, 0xF0);
    for (; nBlocks > 0; --nBlocks, p += BLOCK) {
        const __m128i abefBefore = abef;
        const __m128i cdghBefore = cdgh;
        __m128i words[4];
        for (int i = 0; i < 4; ++i)
            words[i] =
                _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i *>(p) + i), order);
#pragma GCC unroll 16
        for (int i = 0; i < ROUNDS / 4; ++i) {
            __m128i &now = words[i & 3];
            const __m128i sum = _mm_add_epi32(
                now, _mm_load_si128(reinterpret_cast<const __m128i *>(ROUND_CONSTANTS) + i));
            cdgh = _mm_sha256rnds2_epu32(cdgh, abef, sum);
            abef = _mm_sha256rnds2_epu32(abef, cdgh, _mm_shuffle_epi32(sum, 0x0E));
            if (i < 12) {
                const __m128i last = words[(i + 3) & 3];
                const __m128i middle = _mm_alignr_epi8(last, words[(i + 2) & 3], 4);
                now = _mm_sha256msg2_epu32(
                    _mm_add_epi32(_mm_sha256msg1_epu32(now, words[(i + 1) & 3]), middle), last);
            }
        }
        abef = _mm_add_epi32(abef, abefBefore);
        cdgh = _mm_add_epi32(cdgh, cdghBefore);
    }
    const __m128i feba = _mm_shuffle_epi32(abef, 0x1B);
    const __m128i dchg = _mm_shuffle_epi32(cdgh, 0xB1);
    _mm_storeu_si128(reinterpret_cast<__m128i *>(pState), _mm_blend_epi16(feba, dchg, 0xF0));
    _mm_storeu_si128(reinterpret_cast<__m128i *>(pState + 4), _mm_alignr_epi8(dchg, feba, 8));
}

void CSha256::Add(const void *pData, size_t nSize)
{
    const BYTE *p = static_cast<const BYTE *>(pData);
    const size_t nBegun = static_cast<size_t>(m_nSize % BLOCK);
    m_nSize += nSize;
    if (nBegun > 0) {
        const size_t nTaken = std::min(nSize, BLOCK - nBegun);
        memcpy(m_block + nBegun, p, nTaken);
        if (nBegun + nTaken < BLOCK)
            return;
        m_pAddBlocks(m_state, m_block, 1);
        p += nTaken;
        nSize -= nTaken;
    }
    m_pAddBlocks(m_state, p, nSize / BLOCK);
    memcpy(m_block, p + nSize / BLOCK * BLOCK, nSize % BLOCK);
}

CCUString CSha256::Finish()
{
    const ULONGLONG nBits = m_nSize * 8;
    const BYTE padding[BLOCK] = {0x80};
    const size_t nBegun = static_cast<size_t>(m_nSize % BLOCK);
    const size_t nRoom = BLOCK - sizeof nBits;
    Add(padding, nBegun < nRoom ? nRoom - nBegun : BLOCK + nRoom - nBegun);
    BYTE length[sizeof nBits];
    for (size_t i = 0; i < sizeof length; ++i)
        length[i] = static_cast<BYTE>(nBits >> (56 - 8 * i));
    Add(length, sizeof length);
    CCUString sSum;
    for (const DWORD nWord : m_state) {
        CCUString sWord;
        sWord.Format("%08lx", nWord);
        sSum += sWord;
    }
    return sSum;
}

CCUString CSha256::Of(const void *p, size_t nSize)
{
    CSha256 sum;
    sum.Add(p, nSize);
    return sum.Finish();
}
