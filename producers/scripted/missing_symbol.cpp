// A producer whose vendor forgot to ship a library: it needs a function that nobody brings, so it cannot be loaded.
extern "C" int FunctionOfALibraryThatIsNotThere();

extern "C" __attribute__((visibility("default"))) int GCInitLib()
{
    return FunctionOfALibraryThatIsNotThere();
}
