#pragma once

#include <QDGui/qdguiglobal.h>

#include <QIcon>
#include <QObject>
#include <QRectF>
#include <QString>

#include <memory>

class QDir;
class QDomDocument;
class QDomNode;
class QRect;

namespace Korvane {

class GeoPainter;

namespace Map {

/// Something that a map view shows. World coordinates are the layer's own units, x to the right and y upward; a world
/// rectangle is given by its top-left corner (x1, y1) and its bottom-right corner (x2, y2), so y2 < y1 on a north-up
/// map, and as a QRectF with a negative height.
///
/// Everything but refresh() is called on the GUI thread. The order of the virtual functions is part of the interface.
class QDGUI_EXPORT Layer : public QObject
{
    Q_OBJECT

public:
    explicit Layer(QObject *parent = nullptr);
    ~Layer() override;

    /// File name or address that the layer shows; empty before the first one.
    virtual QString getDataSource() const = 0;
    /// Opens \a source. On failure returns false, and getLastError() says why.
    virtual bool setDataSource(QString source) = 0;
    virtual QIcon getIcon() const;
    virtual bool isVisible() const;
    virtual void setVisible(bool visible);
    /// Identifies the layer within projects: a UUID without braces, new for every layer unless a project restored it.
    virtual QString getUid() const;
    virtual QString getComments() const;
    virtual void setComments(QString comments);
    /// The name a person sees in the layer list.
    virtual QString getDescription() const;
    virtual void setDescription(QString description);
    virtual QString getFormat() const;
    virtual QString getCoordSysName() const;
    /// Announces what is on screen: \a width by \a height device pixels that show the world rectangle from (x1, y1) to
    /// (x2, y2). The corners run the way the layer's own rows and columns do: y2 < y1 for a layer whose bounds have a
    /// negative height (north up), y2 > y1 for one whose bounds have a positive height (south up). Must not wait for a
    /// decode of a progressive layer; it calls refresh() as pixels arrive.
    virtual void setView(int width, int height, double x1, double y1, double x2, double y2) = 0;
    /// Brackets a series of quick view changes. \a zooming: the scale changes too, not just the place.
    virtual void beginUpdate(bool zooming);
    /// Ends the series; a last setView() follows.
    virtual void endUpdate();
    /// World rectangle: left and top are the corner of the first cell of the first row, the height is negative for
    /// north-up layers.
    virtual QRectF getBounds() const = 0;
    virtual bool isValid() const = 0;
    virtual QString getLastError() const;
    virtual QString getProtocol() const;
    /// How much of the current view is decoded, 0 to 100; -1 when there is nothing to decode.
    virtual signed char getPercentComplete() const;
    /// Restores the layer from \a node, an element that writeXML() filled. Relative data sources are looked up from
    /// \a projectFolder. Returns false, with a sentence in \a error if that is not null, when the node is not a
    /// layer's or its data source cannot be opened; what can be restored without a source is restored even then.
    ///
    /// Applied in this order: uid and comments, data source, description and visibility, then the stored properties.
    /// A property setter may re-open the source or change another property, so the saved values are compared again
    /// and set where they differ, at most three times over.
    virtual bool readXML(QDomNode &node, QDir &projectFolder, QString *error);
    /// Appends what readXML() needs as child elements of \a node, an empty element of \a document: uid, description,
    /// comments, visibility, data source and every Qt property of the subclass that can be read, written and is
    /// stored (see Q_PROPERTY's STORED). Returns false when \a node cannot take children.
    virtual bool writeXML(QDomNode &node, QDomDocument &document);
    /// Draws the layer. \a world is the rectangle on screen (negative height, whatever the layer's own direction),
    /// \a device the rectangle of device pixels that shows it. A progressive layer draws what it has.
    virtual void paint(GeoPainter &painter, const QRectF *world, const QRect *device) = 0;

    /// Whether the last setDataSource() failed because somebody did not want to wait for it, and not for a fault of the
    /// source.
    bool isOpeningCancelled() const;

    /// Asks for the world rectangle from (x1, y1) to (x2, y2) to be drawn again; (0, 0, 0, 0) means all of the layer.
    /// May be called from any thread as long as the layer exists, and returns at once: calls are gathered and delivered
    /// by refreshRequested() from the layer's event loop. Those still pending when the layer is deleted are dropped.
    void refresh(double x1, double y1, double x2, double y2);

    /// Number of refresh() calls so far. Any thread.
    quint64 getRefreshCount() const;
    /// Whether a refresh() has not been delivered yet. Any thread.
    bool hasPendingRefresh() const;

    /// Makes a local data source, that writeXML() put below \a layerNode, relative to \a projectFolder (the folder the
    /// project is saved in) wherever a relative path between the two exists.
    static void makeSourceRelative(const QDomNode &layerNode, const QDir &projectFolder);

Q_SIGNALS:
    /// \a worldRect is normalised (positive width and height); a null rectangle means all of the layer. Emitted on the
    /// layer's own thread.
    void refreshRequested(const QRectF &worldRect);

protected:
    /// For setDataSource().
    void setOpeningCancelled(bool cancelled);
    bool event(QEvent *event) override;

private:
    Q_DISABLE_COPY(Layer)

    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace Map
} // namespace Korvane
