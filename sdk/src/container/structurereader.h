#pragma once

#include "boxreader.h"
#include "headerboxes.h"
#include "jp2structure.h"

#include <optional>
#include <string>
#include <vector>

namespace xrv {

/// Collects what the boxes of one JP2 or JPX file tell, wherever they stand: real files have header boxes outside of
/// the header, and codestreams inside of other boxes.
class StructureReader
{
public:
    StructureReader(ByteSource &source, std::vector<std::string> *sentences);

    /// Call once. \a structure is undefined on failure.
    PLK::CError read(Jp2Structure *structure);

private:
    /// Where a box is found.
    struct Place
    {
        int depth = 0;
        bool inHeader = false;         ///< in jp2h, jpch or jplh
        HeaderBoxes *header = nullptr; ///< that header boxes found here belong to
        bool inAssociation = false;
        bool inGml = false; ///< below an association labelled "gml.data"
        std::string label;  ///< of the association
    };

    void walk(ByteRange range, Place place);
    void handle(const Box &box, Place *place);
    void enter(const Box &box, const Place &place);
    void codestreamFound(const Box &box, const Place &place);
    void fragmentsFound(const Box &box);
    void labelFound(const Box &box, Place *place);
    void xmlFound(const Box &box, const Place &place);
    void uuidFound(const Box &box);
    void fileTypeFound(const Box &box);
    void extendCodestream();
    void searchCodestream();
    PLK::CError whyNoCodestream() const;
    void fillImage();
    void fillDepths(const ImageHeader &image, const HeaderBoxes &source);
    void fillColour();
    const HeaderBoxes *firstLayer() const;

    ByteSource &source;
    WarningList warnings;
    BoxReader reader;
    HeaderBoxReader headerReader;
    Jp2Structure found;
    HeaderBoxes general;              ///< jp2h
    std::optional<HeaderBoxes> first; ///< jpch of the first codestream
    std::vector<HeaderBoxes> layers;  ///< jplh, the first few
    int codestreamHeaders = 0;
    std::uint32_t brand = 0;
    bool hasCodestream = false;
    bool hasHeader = false;
    bool ranOut = false; ///< a box reaches beyond the end of the file
    bool lostAfterCodestream = false;
    PLK::CError fragmentError; ///< of the fragment table that should have told the first codestream
};

} // namespace xrv
