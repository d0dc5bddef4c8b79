#include <xrv60/plkfile.h>

namespace PLK::SDK {

CFileFactory::CFileFactory() = default;

CFileFactory::~CFileFactory() = default;

CFileFactory *CFilesHelper::Get()
{
    // Never destroyed: views that static objects own may still close when the process ends.
    static auto *factory = new CFileFactory;
    return factory;
}

CFileBase::~CFileBase() = default;

CFilesHelper &CFileBase::sFilesHelper()
{
    static CFilesHelper helper;
    return helper;
}

} // namespace PLK::SDK
