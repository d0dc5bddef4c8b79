#include "rpc.h"

#include "geojp2.h"
#include "georeference.h"
#include "sidefile.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <set>

namespace xrv {

namespace {

constexpr std::size_t kMaxBytes = std::size_t(1024) * 1024;
constexpr std::size_t kCoefficients = 20;
using Coefficients = double[kCoefficients];

static_assert(sizeof(PLKRPCData) == 92 * sizeof(double), "The record is its 92 numbers in their order");

/// Values by key. The keys of _RPC.TXT are in capitals; those of .RPB are brought to them.
using Values = std::map<std::string, std::vector<double>, std::less<>>;

struct Field
{
    const char *textKey;
    const char *rpbKey;
    double PLKRPCData::*value;
};

constexpr Field kErrors[] = {
    {"ERR_BIAS", "errBias", &PLKRPCData::fErrorBias},
    {"ERR_RAND", "errRand", &PLKRPCData::fErrorRandom},
};
constexpr Field kOffsets[] = {
    {"LINE_OFF", "lineOffset", &PLKRPCData::fLineOffset},
    {"SAMP_OFF", "sampOffset", &PLKRPCData::fSampleOffset},
    {"LAT_OFF", "latOffset", &PLKRPCData::fLatitudeOffset},
    {"LONG_OFF", "longOffset", &PLKRPCData::fLongitudeOffset},
    {"HEIGHT_OFF", "heightOffset", &PLKRPCData::fHeightOffset},
};
constexpr Field kScales[] = {
    {"LINE_SCALE", "lineScale", &PLKRPCData::fLineScale},
    {"SAMP_SCALE", "sampScale", &PLKRPCData::fSampleScale},
    {"LAT_SCALE", "latScale", &PLKRPCData::fLatitudeScale},
    {"LONG_SCALE", "longScale", &PLKRPCData::fLongitudeScale},
    {"HEIGHT_SCALE", "heightScale", &PLKRPCData::fHeightScale},
};

struct Polynomial
{
    const char *textKey;
    const char *rpbKey;
    Coefficients PLKRPCData::*values;
    bool isDenominator;
};

constexpr Polynomial kPolynomials[] = {
    {"LINE_NUM_COEFF", "lineNumCoef", &PLKRPCData::fLineNumerator, false},
    {"LINE_DEN_COEFF", "lineDenCoef", &PLKRPCData::fLineDenominator, true},
    {"SAMP_NUM_COEFF", "sampNumCoef", &PLKRPCData::fSampleNumerator, false},
    {"SAMP_DEN_COEFF", "sampDenCoef", &PLKRPCData::fSampleDenominator, true},
};

/// Collects what a file has and judges whether it is a whole record.
class RecordBuilder
{
public:
    RecordBuilder(std::string fileName, std::vector<std::string> *texts)
        : name(std::move(fileName))
        , warnings(texts)
    {
    }

    void add(const std::string &key, std::vector<double> numbers)
    {
        if (!values.emplace(key, std::move(numbers)).second && repeated.insert(key).second)
            warnings->push_back("The RPC file '" + name + "' has " + key + " more than once; the first one is used.");
    }

    /// \a keyOf gives the name that the file's format has for a field or polynomial.
    template <typename KeyOf, typename CoefficientsOf>
    std::optional<PLKRPCData> record(KeyOf keyOf, CoefficientsOf coefficientsOf)
    {
        PLKRPCData data{};
        for (const Field &field : kErrors)
            data.*field.value = number(keyOf(field)).value_or(kUnknownRpcError);
        for (const Field &field : kOffsets)
            take(number(keyOf(field)), keyOf(field), &(data.*field.value));
        for (const Field &field : kScales) {
            take(number(keyOf(field)), keyOf(field), &(data.*field.value));
            if (data.*field.value == 0)
                refuse(keyOf(field));
        }
        for (const Polynomial &polynomial : kPolynomials)
            takePolynomial(coefficientsOf(polynomial), keyOf(polynomial), polynomial, &data);
        return isWhole() ? std::optional<PLKRPCData>(data) : std::nullopt;
    }

    std::optional<double> number(std::string_view key) const
    {
        const auto found = values.find(key);
        if (found == values.end() || found->second.size() != 1)
            return std::nullopt;
        return found->second.front();
    }

    std::vector<double> numbers(std::string_view key) const
    {
        const auto found = values.find(key);
        return found == values.end() ? std::vector<double>() : found->second;
    }

private:
    void take(std::optional<double> value, const char *key, double *out)
    {
        if (value)
            *out = *value;
        else
            refuse(key);
    }

    void takePolynomial(const std::vector<double> &found, const char *key, const Polynomial &polynomial,
                        PLKRPCData *data)
    {
        const bool isZero = std::all_of(found.begin(), found.end(), [](double v) { return v == 0; });
        if (found.size() == kCoefficients && !(polynomial.isDenominator && isZero))
            std::copy(found.begin(), found.end(), data->*polynomial.values);
        else
            refuse(key);
    }

    void refuse(const char *key)
    {
        if (firstBadKey.empty())
            firstBadKey = key;
    }

    bool isWhole()
    {
        if (!firstBadKey.empty())
            warnings->push_back("The RPC file '" + name + "' is ignored because its " + firstBadKey +
                                " is missing or cannot be.");
        return firstBadKey.empty();
    }

    std::string name;
    std::vector<std::string> *warnings;
    Values values;
    std::set<std::string> repeated; ///< keys that were warned of
    std::string firstBadKey;
};

/// The number at the start of \a text; a unit may stand behind it.
std::vector<double> numberBeforeUnit(std::string_view text)
{
    text = trimmed(text);
    const std::optional<double> value = parseNumber(text.substr(0, text.find_first_of(" \t")));
    return value ? std::vector<double>{*value} : std::vector<double>();
}

/// Numbers of "( a, b, ... )", or of a single "a". Empty where one of them is no number.
std::vector<double> numberList(std::string_view text)
{
    text = trimmed(text);
    if (text.size() >= 2 && text.front() == '(' && text.back() == ')')
        text = text.substr(1, text.size() - 2);
    std::vector<double> numbers;
    while (!text.empty() && numbers.size() <= kCoefficients) {
        const std::size_t end = std::min(text.find(','), text.size());
        const std::optional<double> value = parseNumber(trimmed(text.substr(0, end)));
        if (!value)
            return {};
        numbers.push_back(*value);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return numbers;
}

/// Cuts \a text before the first of \a ends and returns what lay before it.
std::string_view takeUntil(std::string_view *text, const char *ends)
{
    const std::size_t end = std::min(text->find_first_of(ends), text->size());
    const std::string_view taken = text->substr(0, end);
    text->remove_prefix(std::min(end + 1, text->size()));
    return taken;
}

/// LINE_NUM_COEFF_1 to LINE_NUM_COEFF_20 and the like; the number itself is not looked at.
bool isCoefficientKey(std::string_view key, std::string_view polynomial)
{
    const std::size_t begin = polynomial.size() + 1;
    return key.size() > begin && key.size() <= begin + 2 && key.substr(0, polynomial.size()) == polynomial;
}

bool isTextKey(std::string_view key)
{
    const auto isKeyOf = [key](const Field &field) { return key == field.textKey; };
    const auto isInPolynomial = [key](const Polynomial &p) { return isCoefficientKey(key, p.textKey); };
    return std::any_of(std::begin(kErrors), std::end(kErrors), isKeyOf) ||
           std::any_of(std::begin(kOffsets), std::end(kOffsets), isKeyOf) ||
           std::any_of(std::begin(kScales), std::end(kScales), isKeyOf) ||
           std::any_of(std::begin(kPolynomials), std::end(kPolynomials), isInPolynomial);
}

bool isRpbKey(std::string_view key)
{
    const auto isKeyOf = [key](const auto &field) { return key == field.rpbKey; };
    return std::any_of(std::begin(kErrors), std::end(kErrors), isKeyOf) ||
           std::any_of(std::begin(kOffsets), std::end(kOffsets), isKeyOf) ||
           std::any_of(std::begin(kScales), std::end(kScales), isKeyOf) ||
           std::any_of(std::begin(kPolynomials), std::end(kPolynomials), isKeyOf);
}

/// Lines such as "BEGIN_GROUP = IMAGE" end without a semicolon and would stick to the key behind them.
std::string_view lastLine(std::string_view text)
{
    text = trimmed(text);
    const std::size_t lineEnd = text.find_last_of("\r\n");
    return lineEnd == std::string_view::npos ? text : text.substr(lineEnd + 1);
}

} // namespace

PLKRPCData rpcOfNumbers(const std::array<double, 92> &numbers)
{
    PLKRPCData data{};
    std::memcpy(&data, numbers.data(), sizeof data);
    return data;
}

std::optional<PLKRPCData> parseRpcText(std::string_view text, const std::string &name,
                                       std::vector<std::string> *warnings)
{
    RecordBuilder builder(name, warnings);
    while (!text.empty()) {
        std::string_view line = takeUntil(&text, "\r\n");
        const std::string key = asciiUpper(trimmed(takeUntil(&line, ":=")));
        if (isTextKey(key))
            builder.add(key, numberBeforeUnit(line));
    }
    const auto coefficients = [&builder](const Polynomial &polynomial) {
        std::vector<double> numbers;
        for (std::size_t i = 1; i <= kCoefficients; ++i) {
            if (const auto value = builder.number(std::string(polynomial.textKey) + "_" + std::to_string(i)))
                numbers.push_back(*value);
        }
        return numbers;
    };
    return builder.record([](const auto &field) { return field.textKey; }, coefficients);
}

std::optional<PLKRPCData> parseRpb(std::string_view text, const std::string &name, std::vector<std::string> *warnings)
{
    RecordBuilder builder(name, warnings);
    while (!text.empty()) {
        std::string_view statement = takeUntil(&text, ";");
        const std::size_t equals = statement.rfind('=');
        if (equals == std::string_view::npos)
            continue;
        const std::string key(trimmed(lastLine(statement.substr(0, equals))));
        if (isRpbKey(key))
            builder.add(key, numberList(statement.substr(equals + 1)));
    }
    const auto coefficients = [&builder](const Polynomial &polynomial) { return builder.numbers(polynomial.rpbKey); };
    return builder.record([](const auto &field) { return field.rpbKey; }, coefficients);
}

std::optional<PLKRPCData> readRpc(const Jp2Structure &structure, const std::string &localName,
                                  std::vector<std::string> *warnings)
{
    for (const UuidBox &box : structure.uuidBoxes) {
        const auto numbers = box.uuid == kGeoJp2Uuid ? readRpcTag(box.content, warnings) : std::nullopt;
        if (numbers)
            return rpcOfNumbers(*numbers);
    }
    const std::vector<std::string> textEndings = {"_RPC.TXT", "_rpc.txt", "_RPC.txt", "_rpc.TXT"};
    if (const auto file = findSideFile(localName, textEndings, kMaxBytes, warnings)) {
        if (const auto data = parseRpcText(file->text, file->name, warnings))
            return data;
    }
    if (const auto file = findSideFile(localName, {".RPB", ".rpb"}, kMaxBytes, warnings))
        return parseRpb(file->text, file->name, warnings);
    return std::nullopt;
}

} // namespace xrv
