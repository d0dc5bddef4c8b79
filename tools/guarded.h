#pragma once

#include <cstdio>
#include <exception>
#include <new>

/// Runs the whole of \a program, which gives its exit status: no program ends by an abort. What it throws becomes a
/// sentence and status 1.
template <typename Program> int guarded(const char *name, Program program)
{
    try {
        return program();
    } catch (const std::bad_alloc &) {
        std::fprintf(stderr, "%s: There is not enough memory.\n", name);
    } catch (const std::exception &exception) {
        std::fprintf(stderr, "%s: %s.\n", name, exception.what());
    }
    return 1;
}
