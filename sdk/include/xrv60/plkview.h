#pragma once

#include "plkerror.h"
#include "plkexport.h"
#include "plkfile.h"
#include "plkopencontrol.h"
#include "plkstring.h"
#include "plktransform.h"
#include "plktypes.h"
#include "plkviewparameters.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace PLK {

/// A window on an image file: a world rectangle shown with a size in pixels.
///
/// Use: Open(), then for every picture SetView() and read its lines from top to bottom.
///
/// **Blocking** views (opened with progressive off) decode while lines are read. After the last line the picture begins
/// again at the top, from cells that are still at hand: a caller that paints often reads all lines each time and need
/// not set the view again. One that stopped half-way sets the view again to get back to the top.
///
/// **Progressive** views decode on the SDK's own thread, coarse to fine. Each pass ends in one call of RefreshPass() on
/// that thread; the lines read from within this call are those of the pass. At least a coarse and a final pass are made
/// where the final one takes more than about 50 ms. Between passes, lines read from another thread are those of the
/// last pass that called back, from the top again; before the first pass of a view they are PLK_READ_CANCELLED. Where
/// decoding fails, the final pass calls back all the same: its lines are PLK_READ_FAILED, and GetLastError() says why.
///
/// Threads and locks:
/// - SetView() never waits for a callback or a decode in flight. It starts a new generation and returns; a caller may
///   hold any lock that its callback takes.
/// - Lines read from within a callback belong to the pass that called back. Once a newer view is set they turn into
///   PLK_READ_CANCELLED, as they do after CancelReads() and from the beginning of Close().
/// - Close() alone waits: when it returns no callback runs and none will come. It must not be called from within a
///   callback, nor with a lock held that the callback takes. A class that overrides RefreshPass() must call Close() in
///   its own destructor.
/// - A view is driven (SetView, Close, setters) from one thread at a time.
class PLK_EXPORT CView : public SDK::CFileClient
{
public:
    using ViewParametersDecompress = ViewParameters::ViewParametersDecompress;
    using ViewParametersJp2 = ViewParameters::ViewParametersJp2;

    CView();
    ~CView() override;

    /// Opens a local file (any of XRV, JP2, JPX, bare codestream; the content decides) or a stream address. A file that
    /// is open already is closed first. \a update is reserved and must be false. A narrow name is UTF-8. A wide name is
    /// the name itself, or the bytes of the UTF-8 name each widened to one character: names that GetFileName() gave
    /// survive that trip. PLK_ERR_CANCELLED when its control was cancelled.
    CError Open(const wchar_t *name, bool progressive, bool update);
    CError Open(const CString &name, bool progressive, bool update);
    /// The control of every Open() from now on, by which other threads can end and watch it. Not while one is under
    /// way.
    void SetOpenControl(const COpenControl &control);
    /// Cancels, waits for a callback in flight and closes. \a freeCache drops the file's decoded tiles, unless another
    /// view shows it.
    CError Close(bool freeCache);
    /// Reconnects a stream after error 76 and goes on where it stopped: the view that was set last begins again, from
    /// the bytes that are there. Waits for nothing; success where no connection was lost, and for local files. Lines of
    /// a blocking view are then waited for no more than a few seconds, until the server has said something again.
    /// PLK_ERR_FILE_CHANGED for a stream whose file was changed on the server: it has to be opened anew.
    CError Reconnect();

    /// Sets what the next lines show: \a bandCount band indices (1 to 4 entries: one as grey, three as red, green and
    /// blue, four with opacity; indices may repeat), \a width by \a height pixels, for the world rectangle from (x1,
    /// y1) top left to (x2, y2) bottom right. The rectangle may reach beyond the image; pixels outside are transparent
    /// black. PLK_ERR_INVALID_ARGUMENT for a size of 0 or above 65535, an index out of range or an empty or non-finite
    /// rectangle; the last view then stays in force. PLK_ERR_CONNECTION_LOST (76) while the connection of a stream is
    /// lost and PLK_ERR_FILE_CHANGED when its file is another one now: the view is set, but shows what is at hand
    /// alone.
    CError SetView(int bandCount, const int *bands, int width, int height, double x1, double y1, double x2, double y2);
    /// Makes reads of the present view return PLK_READ_CANCELLED and stops its decoding. Returns at once.
    void CancelReads();

    /// Next line as \a width pixels of blue, green, red and alpha bytes. Alpha is 255 without an opacity band, 0
    /// outside the image. Colours are not premultiplied.
    PLKReadStatus ReadLineBGRA(void *line);
    /// Next line as one buffer per band that was set, \a width cells each, through the bands' transforms; of the cell
    /// types only PLKCT_UINT8 applies them, others give cells as they are, converted, rounded and clamped to the type;
    /// Floats as PLKCT_FLOAT bit by bit. \a lines has as many entries as bands were set; more are left alone. Cells
    /// outside the image are 0.
    PLKReadStatus ReadLineBIL(PLKCellType type, void *const *lines);
    /// The same for exactly four byte lines, as many as there are bands set are written.
    PLKReadStatus ReadLineBIL(std::uint8_t *const *lines, PLKCellType type);

    bool IsProgressive() const;
    /// A view has been set since Open().
    bool IsViewSet() const;
    /// The view as set; sizes of 0 before the first SetView().
    PLKSetViewInfo GetSetViewInfo() const;
    bool IsReadCancelPending() const;
    bool IsClosePending() const;
    /// Error of the last line or pass that failed.
    CError GetLastError() const;

    /// Decoding progress of the view that is set, 0 to 100; 100 before the first view is set. A blocking view ends at
    /// 100 with its last line, or at once where a decoded picture is at hand.
    signed char GetPercentComplete() const;
    /// Blocks of the view that is set which are decoded, and all of them. A block is a tile of the codestream at the
    /// resolution of the view.
    std::uint64_t GetAllBlocksAvailable() const;
    std::uint64_t GetAllBlocksInView() const;

    /// Map from cells to 8 bits. Without one, a band of n bits is shifted to 8 (signed bands from the middle).
    CError SetTransform(unsigned band, std::unique_ptr<API::CMinMaxTransform> transform);
    CError ClearTransforms();
    /// Transforms that stretch what is left after cutting (100 - percent) per cent of the cells, half at either end, to
    /// the full range; from the statistics that the file carries, else from a small resolution level. \a sampling (1 to
    /// 100) is the share of their cells to look at, in per cent.
    CError CalculateMinMaxTransforms(unsigned bandCount, const unsigned *bands,
                                     std::vector<std::unique_ptr<API::CMinMaxTransform>> *transforms, double percent,
                                     unsigned sampling);
    /// Bands to show as red, green, blue and, where there is one, opacity. PLK_ERR_NOT_AVAILABLE for images with fewer
    /// than three bands besides opacity.
    CError GetDefaultRGBABandList(std::vector<std::uint32_t> *bands) const;

    ViewParametersDecompress &ParametersDecompress() { return parametersDecompress; }
    const ViewParametersDecompress &ParametersDecompress() const { return parametersDecompress; }
    ViewParametersJp2 &ParametersJp2() { return parametersJp2; }
    const ViewParametersJp2 &ParametersJp2() const { return parametersJp2; }

    /// A pass of a progressive view is ready. Called on the SDK's thread by the default RefreshPass().
    virtual void RefreshUpdate(PLKSetViewInfo *info);
    /// The same with a result: PLK_READ_CANCELLED ends the decoding of this view.
    virtual PLKReadStatus RefreshPass(PLKSetViewInfo *info);

private:
    class Private;
    std::unique_ptr<Private> d;
    COpenControl openControl;
    ViewParametersDecompress parametersDecompress;
    ViewParametersJp2 parametersJp2;
};

} // namespace PLK
