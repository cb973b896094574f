// Symbols with a state, to see that two handles lead to one loaded library.
extern "C" int zbTestCounter()
{
    static int calls = 0;
    return ++calls;
}

extern "C" int zbTestValue;
int zbTestValue = 4711;
