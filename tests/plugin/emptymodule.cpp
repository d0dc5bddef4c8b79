// A module that does nothing but be loaded.

extern "C" int emptyModule();

extern "C" int emptyModule()
{
    return 0;
}
