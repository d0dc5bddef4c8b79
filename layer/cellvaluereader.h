#pragma once

#include <QDGui/layervaluereader.h>

#include <xrv60/plkview.h>

#include <QRectF>

#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace Korvane {

/// Reads values through a view of its own on a thread of its own, so that neither the person nor the layer's picture
/// waits for them. What the layer has decoded already is shared through the SDK's cache.
class CellValueReader : public Map::LayerValueReader
{
    Q_OBJECT

public:
    /// \a name: as PLK::CView::GetFileName() gives it. Nothing is opened before the first question.
    explicit CellValueReader(std::string name);
    /// Cancels what is under way.
    ~CellValueReader() override;

    void ask(const Map::ValueQuestion &question) override;

private:
    void work();
    void answer(const Map::CellValues &values, quint64 number);
    /// From the event loop.
    Q_INVOKABLE void deliver();
    Map::CellValues read(const Map::ValueQuestion &question);
    PLK::CError locate(Map::CellValues *values, QRectF *worldRect) const;
    PLK::CError readBands(const QRectF &worldRect, Map::CellValues *values);

    const std::string name;
    PLK::COpenControl control;
    PLK::CView view; // of the thread, but for CancelReads()
    bool isOpen = false;

    std::mutex mutex; // guards the following
    std::condition_variable changed;
    std::optional<Map::ValueQuestion> question;
    quint64 lastQuestion = 0;
    std::optional<Map::CellValues> ready;
    quint64 readyNumber = 0;
    bool isReading = false;
    bool isStopping = false;

    std::thread thread;
};

} // namespace Korvane
