// One truth value that is false until it is set, for members that no constructor mentions.
#pragma once

/// Plain value of one word. Not for sharing between threads.
class CBool
{
  public:
    CBool() = default;
    CBool(bool value) : m_nValue(value ? 1 : 0)
    {
    }
    operator bool() const
    {
        return m_nValue != 0;
    }

  private:
    int m_nValue = 0;
};
