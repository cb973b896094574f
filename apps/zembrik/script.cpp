#include "zembrik/script.h"

#include "platform/text.h"
#include "zembrik/screen_size_text.h"
#include "zembrik/script_keys.h"

#include <charconv>
#include <map>

namespace zb::screens
{
namespace
{
constexpr int farthest = 32767;
constexpr int mostWheel = 100;
constexpr int longestWait = 600'000;

/// What is wrong with one line.
class LineError : public std::runtime_error
{
  public:
    using std::runtime_error::runtime_error;
};

/// The words of one line, taken one by one.
class Line
{
  public:
    explicit Line(std::string_view text) : m_rest(text)
    {
        skipBlanks();
    }
    bool isEmpty() const
    {
        return m_rest.empty();
    }
    std::string word()
    {
        const std::size_t end = std::min(m_rest.find_first_of(" \t"), m_rest.size());
        std::string found(m_rest.substr(0, end));
        m_rest.remove_prefix(end);
        skipBlanks();
        return found;
    }
    /// All that is left, which must be something.
    std::string rest(const char *what)
    {
        if (isEmpty())
        {
            throw LineError(std::string(what) + " is missing");
        }
        return std::string(std::exchange(m_rest, {}));
    }
    int number(const char *what, int least, int most)
    {
        const std::string text = word();
        int value = 0;
        const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), value);
        if (text.empty())
        {
            throw LineError(std::string(what) + " is missing");
        }
        if (fault != std::errc() || end != text.data() + text.size() || value < least || value > most)
        {
            throw LineError(std::string(what) + " is a number from " + std::to_string(least) + " to " +
                            std::to_string(most) + ", not \"" + text + "\"");
        }
        return value;
    }
    void end() const
    {
        if (!isEmpty())
        {
            throw LineError("\"" + std::string(m_rest) + "\" is too much");
        }
    }

  private:
    void skipBlanks()
    {
        m_rest.remove_prefix(std::min(m_rest.find_first_not_of(" \t"), m_rest.size()));
    }

    std::string_view m_rest;
};

class Reader
{
  public:
    void add(int number, std::string_view text)
    {
        m_line = number;
        Line line(text);
        if (line.isEmpty() || text[text.find_first_not_of(" \t")] == '#')
        {
            return;
        }
        const std::string verb = line.word();
        const auto found = verbs().find(verb);
        if (found == verbs().end())
        {
            throw LineError("\"" + verb + "\" is none of " + allVerbs());
        }
        (this->*found->second)(line);
        line.end();
    }
    Script take()
    {
        return std::move(m_script);
    }

  private:
    using Verb = void (Reader::*)(Line &);

    static const std::map<std::string, Verb> &verbs()
    {
        static const std::map<std::string, Verb> all = {
            {"pen", &Reader::pen},   {"tap", &Reader::tap},     {"hold", &Reader::hold},
            {"key", &Reader::key},   {"type", &Reader::type},   {"wheel", &Reader::wheel},
            {"wait", &Reader::wait}, {"shot", &Reader::shot},   {"size", &Reader::size},
            {"quit", &Reader::quit}, {"rotate", &Reader::rotate}};
        return all;
    }
    static std::string allVerbs()
    {
        std::string names;
        for (const auto &[name, verb] : verbs())
        {
            names += (names.empty() ? "" : ", ") + name;
        }
        return names;
    }

    template <typename Action>
    void put(Action action)
    {
        m_script.push_back({m_line, std::move(action)});
    }

    /// A pen drawn off the screen has coordinates below 0.
    static PenStep place(Line &line, PenStep::Kind kind)
    {
        const int x = line.number("x", -farthest, farthest);
        return {kind, x, line.number("y", -farthest, farthest)};
    }
    void pen(Line &line)
    {
        static const std::map<std::string, PenStep::Kind> kinds = {
            {"down", PenStep::Kind::Down}, {"move", PenStep::Kind::Move}, {"up", PenStep::Kind::Up}};
        const std::string word = line.word();
        const auto kind = kinds.find(word);
        if (kind == kinds.end())
        {
            throw LineError("a pen goes down, move or up, not \"" + word + "\"");
        }
        put(place(line, kind->second));
    }
    void tap(Line &line)
    {
        const PenStep down = place(line, PenStep::Kind::Down);
        put(down);
        put(PenStep{PenStep::Kind::Up, down.x, down.y});
    }
    void hold(Line &line)
    {
        const PenStep down = place(line, PenStep::Kind::Down);
        put(down);
        wait(line);
        put(PenStep{PenStep::Kind::Up, down.x, down.y});
    }
    void key(Line &line)
    {
        const std::string name = line.rest("the key");
        const auto named = keyNamed(name);
        if (!named)
        {
            throw LineError("\"" + name + "\" is no key");
        }
        for (const int modifier : named->modifiers)
        {
            put(KeyStep{modifier, true});
        }
        put(KeyStep{named->key, true, named->character});
        put(KeyStep{named->key, false});
        for (auto modifier = named->modifiers.rbegin(); modifier != named->modifiers.rend(); ++modifier)
        {
            put(KeyStep{*modifier, false});
        }
    }
    void type(Line &line)
    {
        put(TypeStep{toUtf16(line.rest("the text"))});
    }
    void wheel(Line &line)
    {
        put(WheelStep{line.number("the number of steps", -mostWheel, mostWheel)});
    }
    void wait(Line &line)
    {
        put(WaitStep{static_cast<unsigned>(line.number("the time in milliseconds", 0, longestWait))});
    }
    void shot(Line &line)
    {
        put(ShotStep{line.rest("the file")});
    }
    void size(Line &line)
    {
        const std::string text = line.rest("the size");
        const auto size = screenSizeOf(text);
        if (!size)
        {
            throw LineError("a size is such as 480x640, sides from " + std::to_string(smallestSide) + " to " +
                            std::to_string(largestSide) + ", not \"" + text + "\"");
        }
        put(SizeStep{size->first, size->second});
    }
    void rotate(Line &)
    {
        put(SizeStep{0, 0});
    }
    void quit(Line &)
    {
        put(QuitStep{});
    }

    Script m_script;
    int m_line = 0;
};
} // namespace

Script readScript(std::istream &stream, const std::string &name)
{
    Reader reader;
    std::string errors;
    std::string text;
    for (int number = 1; std::getline(stream, text); ++number)
    {
        if (text.ends_with('\r'))
        {
            text.pop_back();
        }
        try
        {
            reader.add(number, text);
        }
        catch (const LineError &error)
        {
            errors += (errors.empty() ? "" : "\n") + name + ":" + std::to_string(number) + ": " + error.what();
        }
    }
    if (!errors.empty())
    {
        throw ScriptError(errors);
    }
    return reader.take();
}
} // namespace zb::screens
