#include <xrv60/plkopencontrol.h>

#include "io/openwatch.h"

namespace PLK {

COpenControl::COpenControl()
    : watch(std::make_shared<xrv::OpenWatch>())
{
}

void COpenControl::Cancel()
{
    watch->cancel.raise();
}

bool COpenControl::IsCancelled() const
{
    return watch->cancel.isRaised();
}

std::uint64_t COpenControl::GetBytesReceived() const
{
    return watch->received;
}

std::uint64_t COpenControl::GetBytesExpected() const
{
    return watch->expected;
}

} // namespace PLK
