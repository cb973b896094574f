// Matching of names against patterns.
#include "core/wildmat.h"

namespace
{
const WCHAR *orEmpty(const WCHAR *text)
{
    return text != nullptr ? text : u"";
}

enum class Step
{
    Matched,
    Mismatched,
    Aborted,
    AtStar
};

/// Walks both up to the next '*' of the pattern that has more behind it, or to a result.
Step matchRun(const WCHAR *&text, const WCHAR *&pattern)
{
    for (; *pattern != 0; ++pattern, ++text)
    {
        if (*text == 0)
        {
            return pattern[0] == u'*' && pattern[1] == 0 ? Step::Matched : Step::Aborted;
        }
        if (*pattern == u'*')
        {
            return pattern[1] == 0 ? Step::Matched : Step::AtStar;
        }
        if (*pattern == u'?')
        {
            continue;
        }
        if (*pattern == u'\\')
        {
            ++pattern;
        }
        if (*pattern != *text)
        {
            return Step::Mismatched;
        }
    }
    return *text == 0 ? Step::Matched : Step::Mismatched;
}
} // namespace

bool wildmat(const WCHAR *text, const WCHAR *pattern)
{
    const WCHAR *name = orEmpty(text);
    const WCHAR *glob = orEmpty(pattern);
    if ((*glob == u'?' || *glob == u'*') && *name == u'.')
    {
        return false;
    }
    return DoMatch(name, glob) == 1;
}

// A '*' ends the search of every '*' before it: what it finds, match or abort, is final. So only the last one has to
// be gone back to, and no pattern can make this recurse or take more than text times pattern steps.
int DoMatch(const WCHAR *text, const WCHAR *pattern)
{
    const WCHAR *name = orEmpty(text);
    const WCHAR *glob = orEmpty(pattern);
    const WCHAR *starName = nullptr;
    const WCHAR *starGlob = nullptr;
    for (;;)
    {
        switch (matchRun(name, glob))
        {
        case Step::Matched:
            return 1;
        case Step::Aborted:
            return -1;
        case Step::AtStar:
            starName = name;
            starGlob = glob + 1;
            break;
        case Step::Mismatched:
            if (starName == nullptr)
            {
                return 0;
            }
            if (*++starName == 0)
            {
                return -1;
            }
            break;
        }
        name = starName;
        glob = starGlob;
    }
}

int Star(const WCHAR *text, const WCHAR *pattern)
{
    const WCHAR *name = orEmpty(text);
    for (;;)
    {
        const int result = DoMatch(name, pattern);
        if (result != 0)
        {
            return result;
        }
        if (*name == 0 || *++name == 0)
        {
            return -1;
        }
    }
}
