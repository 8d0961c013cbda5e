#pragma once

// A list that grows, for what can be assigned. An index must be one of the list's.
template <typename T>
class CCUArray
{
public:
    CCUArray() : m_items(nullptr), m_nCount(0), m_nCapacity(0) {}
    ~CCUArray() { delete[] m_items; }
    CCUArray(const CCUArray &) = delete;
    CCUArray &operator=(const CCUArray &) = delete;

    int Count() const { return m_nCount; }
    T &operator[](int nIndex) { return m_items[nIndex]; }
    const T &operator[](int nIndex) const { return m_items[nIndex]; }

    void Add(const T &item)
    {
        if (m_nCount == m_nCapacity)
            Grow();
        m_items[m_nCount++] = item;
    }

    void Remove(int nFirst, int nCount)
    {
        m_nCount -= nCount;
        for (int i = nFirst; i < m_nCount; ++i)
            m_items[i] = m_items[i + nCount];
        for (int i = m_nCount; i < m_nCount + nCount; ++i)
            m_items[i] = T();  // NOLINT(clang-analyzer-core.NullDereference): within the old count
    }

    void Empty() { Remove(0, m_nCount); }

    // In ascending order; `before` says whether its first argument comes before the second.
    template <typename Before>
    void Sort(Before before)
    {
        int nGap = 1;
        while (nGap < m_nCount / 3)
            nGap = nGap * 3 + 1;
        for (; nGap > 0; nGap /= 3) {
            for (int i = nGap; i < m_nCount; ++i) {
                const T item = m_items[i];
                int nPlace = i;
                for (; nPlace >= nGap && before(item, m_items[nPlace - nGap]); nPlace -= nGap)
                    m_items[nPlace] = m_items[nPlace - nGap];
                m_items[nPlace] = item;
            }
        }
    }

private:
    void Grow()
    {
        m_nCapacity = m_nCapacity ? m_nCapacity * 2 : 4;
        T *items = new T[static_cast<unsigned int>(m_nCapacity)];
        for (int i = 0; i < m_nCount; ++i)
            items[i] = m_items[i];
        delete[] m_items;
        m_items = items;
    }

    T *m_items;
    int m_nCount;
    int m_nCapacity;
};
