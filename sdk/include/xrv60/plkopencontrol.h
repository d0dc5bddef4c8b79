#pragma once

#include "plkexport.h"

#include <cstdint>
#include <memory>

namespace xrv {
struct OpenWatch; // private to the library
}

namespace PLK {

namespace SDK {
class CFileClient;
}

/// A hand on a file that another thread opens: ends the opening, and tells how far it is. To be given to
/// CView::SetOpenControl() before CView::Open(). Copies stand for the same opening; all operations are for any thread.
class PLK_EXPORT COpenControl
{
public:
    COpenControl();

    /// Gives the file up, whether its opening has begun or not: CView::Open() fails with PLK_ERR_CANCELLED, within
    /// milliseconds where it waits for a server. What else waits for the bytes of the same file fails so too, and goes
    /// on failing: the file is of no use then but to be closed.
    void Cancel();
    bool IsCancelled() const;

    /// Bytes that came so far of a file that its server gives as a whole only; 0 for any other.
    std::uint64_t GetBytesReceived() const;
    /// Size of that file in bytes; 0 while it is not known, and for any other file.
    std::uint64_t GetBytesExpected() const;

private:
    friend class SDK::CFileClient; // opens with it
    std::shared_ptr<xrv::OpenWatch> watch;
};

} // namespace PLK
