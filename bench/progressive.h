#pragma once

#include "peer.h"
#include "scenarios.h"

#include <memory>
#include <string>

/// A progressive view of a file, to measure how soon something of a new window can be seen.
class ProgressiveProbe
{
public:
    explicit ProgressiveProbe(const std::string &path);
    ~ProgressiveProbe();

    /// Sets \a window and waits until the lines of its first pass were read; tells the time, in milliseconds. Throws
    /// when that pass showed nothing.
    double firstPass(const Window &window);
    /// Waits until the last pass of that window, and tells the time since it was set, in milliseconds.
    double lastPass();
    /// Sets \a window and waits for nothing.
    void set(const Window &window);
    /// The last pass of the window that was set last has been read.
    bool isComplete() const;

private:
    class View;
    std::unique_ptr<View> view;
};
