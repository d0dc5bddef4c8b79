#pragma once

/// What makexrvsample writes: an image that is compressed with loss, of which an XRV file tells all that it can.
namespace XrvSample {

constexpr int kWidth = 300;
constexpr int kHeight = 200;
constexpr int kBands = 2;
constexpr int kBlockSize = 128;
constexpr int kRate = 20;
constexpr const char *kBandNames[kBands] = {"Panchromatic", "近赤外"};
constexpr const char *kDatum = "測地成果2011";
constexpr const char *kProjection = "Plane rectangular IX";
constexpr const char *kDate = "2024-06-01T12:00:00Z";
constexpr const char *kXml = "<題>山</題>";

/// The authoring texts in their order in the file.
constexpr const char *kTexts[10] = {"公開",      "2024-05-17",       "Sensor Ω",    "Packer 3 %1",    "山田太郎",
                                    "© 2024 社", "東京地図株式会社", "a@b.example", "東京都千代田区", "+81 3 0000"};

/// Noise that no lossy compression keeps, in which one value of each band is by far the most frequent.
constexpr int cell(int band, int x, int y)
{
    return x % 4 == 0 ? 17 + band : (x * 31 + y * 57 + band * 11) % (200 + band);
}

} // namespace XrvSample
