// Symbols with a state, to see that two handles lead to one loaded library.
extern "C" int zbTestCounter()
{
    static int calls = 0;
    return ++calls;
}

extern "C" int zbTestValue;
int zbTestValue = 4711;

// Called while the library is unloaded, under the lock of the host system's loader.
extern "C" void (*zbTestAtUnload)();
void (*zbTestAtUnload)() = nullptr;

namespace
{
struct AtUnload
{
    ~AtUnload()
    {
        if (zbTestAtUnload != nullptr)
        {
            zbTestAtUnload();
        }
    }
};
const AtUnload atUnload;
} // namespace
