#pragma once

#include <QString>
#include <QVector>

#include <limits>

namespace Korvane::Map {

/// Histogram of one band with the band's statistics. \a T is the type of the bucket counts and of the band's extreme
/// values. A value type: copies share the counts until one of them is changed.
template <typename T> struct HistogramT
{
    QVector<T> buckets;                              ///< Count of cells per bucket, lowest values first.
    quint32 bucketCount = 0;                         ///< Number of entries of \c buckets.
    T maximumValue = 0;                              ///< Largest cell value of the band.
    T minimumValue = 0;                              ///< Smallest cell value of the band.
    T largestCount = 0;                              ///< Count of the fullest bucket; 0 without buckets.
    T smallestCount = std::numeric_limits<T>::max(); ///< Count of the emptiest bucket; the largest T without buckets.
    double mean = 0.0;
    double median = 0.0;
    double standardDeviation = 0.0;
    double mode = 0.0;
    QString bandName;

    /// Copies \a count bucket counts from \a counts (may be null when \a count is 0) and brings bucketCount,
    /// largestCount and smallestCount in line with them.
    void setBuckets(const T *counts, quint32 count)
    {
        buckets.clear();
        buckets.reserve(static_cast<int>(count));
        bucketCount = count;
        largestCount = 0;
        smallestCount = std::numeric_limits<T>::max();
        for (quint32 i = 0; i < count; ++i) {
            buckets.append(counts[i]);
            largestCount = qMax(largestCount, counts[i]);
            smallestCount = qMin(smallestCount, counts[i]);
        }
    }
};

} // namespace Korvane::Map
