#include <xrv60/plkerror.h>

#include <utility>

namespace PLK {

CError::CError(int number, std::string sentence)
    : code(number)
    , message(std::move(sentence))
{
}

} // namespace PLK
