#pragma once

#include <QString>

namespace Korvane::Map {

/// Implemented by layers that can tell what is wrong with what they show. GUI thread; nothing here waits, but that a
/// stream may be opened within repair(), as within Layer::setDataSource().
class ILayerCondition
{
public:
    enum class Fault {
        None,
        Damaged,        ///< some of the cells cannot be had, and what is shown is not all that was meant to be
        ConnectionLost, ///< nothing more comes from the server until repair()
        SourceChanged   ///< the same: it holds another file now
    };
    struct Condition
    {
        Fault fault = Fault::None;
        QString sentence; ///< in the person's language where that is known
    };
    /// As far as the source has been read.
    virtual Condition getCondition() const = 0;
    /// Reconnects a lost connection, opens a changed source again. Does nothing for what cannot be mended.
    virtual void repair() = 0;

protected:
    ~ILayerCondition() = default;
};

} // namespace Korvane::Map
