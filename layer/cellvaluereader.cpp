#include "cellvaluereader.h"

#include "xrvjp2klayer.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <system_error>
#include <utility>

namespace Korvane {

using Map::CellValues;
using Map::ValueQuestion;
using PLK::CError;

namespace {

constexpr int kBandsOfView = 4; // as many as one view takes
constexpr auto kCancelAgain = std::chrono::milliseconds(10);

} // namespace

CellValueReader::CellValueReader(std::string name)
    : name(std::move(name))
{
    view.SetOpenControl(control);
}

CellValueReader::~CellValueReader()
{
    if (!thread.joinable())
        return;
    control.Cancel();
    std::unique_lock<std::mutex> lock(mutex);
    isStopping = true;
    changed.notify_all();
    // Again and again: a view that is set just after it was cancelled is read all the same.
    while (isReading) {
        view.CancelReads();
        changed.wait_for(lock, kCancelAgain);
    }
    lock.unlock();
    thread.join();
}

void CellValueReader::ask(const ValueQuestion &asked)
{
    const std::lock_guard<std::mutex> lock(mutex);
    question = asked;
    ++lastQuestion;
    if (thread.joinable()) {
        if (isReading)
            view.CancelReads(); // nobody wants that answer any more
        changed.notify_all();
        return;
    }
    try {
        thread = std::thread([this] { work(); });
    } catch (const std::system_error &) {
        CellValues values;
        values.question = asked;
        values.isInside = true;
        values.error = XRVJP2kLayer::tr("There is no thread to spare for reading values.");
        answer(values, lastQuestion);
    }
}

void CellValueReader::work()
{
    std::unique_lock<std::mutex> lock(mutex);
    for (;;) {
        changed.wait(lock, [this] { return isStopping || question; });
        if (isStopping)
            return;
        const ValueQuestion asked = *std::exchange(question, std::nullopt);
        const quint64 number = lastQuestion;
        isReading = true;
        lock.unlock();
        const CellValues values = read(asked);
        lock.lock();
        isReading = false;
        changed.notify_all();
        if (!isStopping && number == lastQuestion)
            answer(values, number);
    }
}

/// With the mutex held. Thread checkers do not see through the toolkit's events, so that these carry nothing.
void CellValueReader::answer(const CellValues &values, quint64 number)
{
    ready = values;
    readyNumber = number;
    QMetaObject::invokeMethod(this, "deliver", Qt::QueuedConnection);
}

void CellValueReader::deliver()
{
    CellValues values;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (!ready || readyNumber != lastQuestion) // a later question was asked meanwhile
            return;
        values = *std::exchange(ready, std::nullopt);
    }
    Q_EMIT answered(values);
}

CellValues CellValueReader::read(const ValueQuestion &asked)
{
    CellValues values;
    values.question = asked;
    CError error;
    if (!isOpen)
        error = view.Open(PLK::CString(name.c_str()), false, false);
    isOpen = !error;
    QRectF worldRect;
    if (!error)
        error = locate(&values, &worldRect);
    if (!error && values.isInside)
        error = readBands(worldRect, &values);
    if (error) {
        values.isInside = true;
        values.values.clear();
        values.error = XRVJP2kLayer::tr(error.GetErrorMessage());
    }
    return values;
}

/// The cell, and the world rectangle to read: the cell's own, or a pixel's around the place where that is larger.
CError CellValueReader::locate(CellValues *values, QRectF *worldRect) const
{
    const ValueQuestion &asked = values->question;
    double column = 0.0, row = 0.0;
    if (CError error = view.ConvertWorldToDataset(asked.world.x(), asked.world.y(), &column, &row))
        return error;
    column = std::floor(column);
    row = std::floor(row);
    const PLKFileInfo *info = view.GetFileInfo();
    values->isInside = column >= 0 && row >= 0 && column < double(info->nSizeX) && row < double(info->nSizeY);
    if (!values->isInside)
        return {};
    values->column = static_cast<qint64>(column);
    values->row = static_cast<qint64>(row);
    const double cell = std::min(std::abs(info->fCellIncrementX), std::abs(info->fCellIncrementY));
    values->isExact = asked.unitsPerPixel <= cell;
    if (!values->isExact) {
        const double half = asked.unitsPerPixel / 2;
        *worldRect =
            QRectF(asked.world.x() - std::copysign(half, info->fCellIncrementX),
                   asked.world.y() - std::copysign(half, info->fCellIncrementY),
                   std::copysign(2 * half, info->fCellIncrementX), std::copysign(2 * half, info->fCellIncrementY));
        return {};
    }
    double x1 = 0.0, y1 = 0.0, x2 = 0.0, y2 = 0.0;
    if (CError error = view.ConvertDatasetToWorld(column, row, &x1, &y1))
        return error;
    if (CError error = view.ConvertDatasetToWorld(column + 1, row + 1, &x2, &y2))
        return error;
    *worldRect = QRectF(x1, y1, x2 - x1, y2 - y1);
    return {};
}

CError CellValueReader::readBands(const QRectF &worldRect, CellValues *values)
{
    QVector<int> bands = values->question.bands;
    for (int band = 0; values->question.bands.isEmpty() && band < view.GetFileInfo()->nBands; ++band)
        bands.append(band);
    for (int first = 0; first < bands.size(); first += kBandsOfView) {
        std::array<int, kBandsOfView> shown{};
        std::array<double, kBandsOfView> cells{};
        std::array<void *, kBandsOfView> lines{};
        const int count = std::min(kBandsOfView, bands.size() - first);
        for (int i = 0; i < kBandsOfView; ++i) {
            shown[std::size_t(i)] = bands[first + std::min(i, count - 1)];
            lines[std::size_t(i)] = &cells[std::size_t(i)];
        }
        if (CError error = view.SetView(kBandsOfView, shown.data(), 1, 1, worldRect.left(), worldRect.top(),
                                        worldRect.right(), worldRect.bottom()))
            return error;
        if (view.ReadLineBIL(PLKCT_DOUBLE, lines.data()) != PLK_READ_SUCCESS)
            return view.GetLastError() ? view.GetLastError() : CError(PLK_ERR_CANCELLED, "The reading was cancelled.");
        std::copy_n(cells.begin(), count, std::back_inserter(values->values));
    }
    return {};
}

} // namespace Korvane
