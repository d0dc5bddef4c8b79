#include <xrv60/xrv60.h>

#include <cstdio>

int main(int, char *arguments[])
{
    PLK::CView view;
    const PLK::CError error = view.Open(PLK::CString(arguments[1]), false, false);
    if (!error)
        std::printf("%u x %u cells\n", view.GetFileInfo()->nSizeX, view.GetFileInfo()->nSizeY);
    return error.GetErrorNumber();
}
