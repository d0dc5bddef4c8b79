#pragma once

#include <xrv60/plktypes.h>

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace xrv {

/// Error bias and error random of a record whose source does not tell them, as the RPC note for TIFF has it.
constexpr double kUnknownRpcError = -1;

/// From the 92 numbers of the tag RPCCoefficientTag, whose order is that of the record.
PLKRPCData rpcOfNumbers(const std::array<double, 92> &numbers);

/// Text of a _RPC.TXT file: lines "KEY: value unit" (or "KEY = value"), such as "LINE_OFF: +009906.00 pixels" and
/// "LINE_NUM_COEFF_1: +1.2E-03". ERR_BIAS and ERR_RAND may be missing; anything else that is missing, is no number or
/// cannot be (a scale of 0) makes nothing of the whole, with a warning that names \a name and the key. Of a repeated
/// key the first one counts, with a warning. Unknown keys do not count.
std::optional<PLKRPCData> parseRpcText(std::string_view text, const std::string &name,
                                       std::vector<std::string> *warnings);

/// Text of an .RPB file: "lineOffset = 4568;" and "lineNumCoef = ( v, v, ... );" within the group IMAGE. The same
/// rules.
std::optional<PLKRPCData> parseRpb(std::string_view text, const std::string &name, std::vector<std::string> *warnings);

} // namespace xrv
