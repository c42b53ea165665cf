#include "host/hoa_infos.h"

#include <gtest/gtest.h>

#include <string>

#include "host/probe_object.h"
#include "pan/hoa3d_panning.h"

namespace {

// Red if a line loses its place or its blank, if numbers are posted instead of names, or if plane and space change
// places.
TEST(HoaInfos, EachMemberHasItsLine) {
    ProbeBox probe;
    probe.Lines();
    Lume::HOA3DPanning panning(1, 9);
    panning.SetEncodingConvention("N3D");
    panning.SetSphericalHarmonicsSorting("AlternateDegrees");
    Lume::HOAPanning::HOAPannerInfos encoding;
    panning.GetPannerInfos(encoding);
    post_hoa_infos(probe.Object(), encoding, "encoder");
    EXPECT_EQ(probe.Lines(),
              "post: encoder : order : 2 |post: encoder : encoding convention : N3D|"
              "post: encoder : sorting convention : AlternateDegrees|");

    Lume::HOADecoder::HOADecoderInfos decoding;
    decoding.order = 1;
    decoding.dimensionFlag = 0;
    decoding.decoderType = Lume::HOADecoder::maxre;
    decoding.decodingConvention = Lume::HOADecoder::N2D;
    decoding.conditionNumber = 1.254;
    post_hoa_infos(probe.Object(), decoding, "decoder");
    EXPECT_EQ(
        probe.Lines(),
        "post: decoder : order : 1 |post: decoder : subtype : 2D |post: decoder : decoding method : pseudoinverse|"
        "post: decoder : decoding type : maxre|post: decoder : decoding convention : N2D|"
        "post: decoder : decoder matrix conditionning : 1.25 dB|"
        "post: decoder : sorting convention : IncreasingDegrees|");
    decoding.dimensionFlag = 1;
    post_hoa_infos(probe.Object(), decoding, "decoder");
    EXPECT_NE(probe.Lines().find("subtype : 3D |"), std::string::npos);
}

}  // namespace
