#pragma once

namespace xrv {

/// Learns by how much reads take longer or shorter than the reader estimates, on this machine and for this file. Until
/// a read was measured they are expected to take three times as long: the first ones also read the file's index and
/// start threads.
class RateTracker
{
public:
    /// Milliseconds to expect for a read that is estimated to take \a estimated.
    double expected(double estimated) const { return estimated * factor; }
    /// A read estimated to take \a estimated took \a measured milliseconds.
    void learn(double estimated, double measured);

private:
    double factor = 3.0;
    bool measuredOnce = false;
};

} // namespace xrv
