#include <gtest/gtest.h>

#include "hrtf/hrtf.h"
#include "object/hoa_infos.h"
#include "object/hrtf_infos.h"
#include "object/probe_object.h"
#include "pan/ambisonic/hoa3d_panning.h"

namespace {

// What is posted about data and matrices. Red if a line loses its place or its blank, or if numbers are posted instead
// of names.
TEST(Infos, EachMemberHasItsLine) {
    ProbeBox probe;
    probe.Lines();
    post_hrtf_xml_infos(probe.Object(), nullptr, "set");
    post_sh_xml_infos(probe.Object(), nullptr, "sh");
    EXPECT_EQ(probe.Lines(), "");
    post_hrtf_xml_infos(probe.Object(), &Lume::Hrtf("").GetHrtfHeaderInfos(), "set");
    EXPECT_EQ(probe.Lines(),
              "post: set : owner : MIT |post: set : subject : KEMAR|post: set : copyright : MIT|"
              "post: set : hrtf type : Binaural|post: set : filter type : BiquadCells|"
              "post: set : flagItdExtracted : itd not extracted|"
              "post: set : flagInterp : data have not been interpolated|"
              "post: set : original measurement set : unknown |post: set : interpolation set : none |"
              "post: set : coefficients : 25|post: set : channels : 2|post: set : sampling rate : 44100|"
              "post: set : points : 710|");
    const Lume::SphericalHarmonicBasisXmlInfo harmonics;
    post_sh_xml_infos(probe.Object(), &harmonics, "sh");
    EXPECT_EQ(probe.Lines(),
              "post: sh : owner :  |post: sh : subject : |post: sh : copyright : |post: sh : hrtf type : Binaural|"
              "post: sh : filter type : SH_COEFF|post: sh : normalization : SchmidtSeminormalized3D|"
              "post: sh : maxOrder : 0|post: sh : numFrequencyBins : 0|post: sh : channels : 0|"
              "post: sh : sampling rate : 0|post: sh : points : 0|");

    Lume::HOAPanning::HOAPannerInfos encoding;
    Lume::HOA3DPanning(1, 9).GetPannerInfos(encoding);
    post_hoa_infos(probe.Object(), encoding, "encoder");
    EXPECT_EQ(probe.Lines(),
              "post: encoder : order : 2 |post: encoder : encoding convention : SN3D|"
              "post: encoder : sorting convention : IncreasingDegrees|");
    Lume::HOADecoder::HOADecoderInfos decoding;
    decoding.order = 1;
    decoding.decoderType = Lume::HOADecoder::maxre;
    decoding.decodingConvention = Lume::HOADecoder::N2D;
    decoding.conditionNumber = 1.254;
    decoding.dimensionFlag = 0;
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
