#include "host/hrtf_infos.h"

#include <gtest/gtest.h>

#include "host/probe_object.h"
#include "hrtf/hrtf.h"

namespace {

// Red if a line loses its place or its blank, or if the numbers of types are posted instead of their names.
TEST(HrtfInfos, EachMemberHasItsLine) {
    ProbeBox probe;
    probe.Lines();
    post_hrtf_xml_infos(probe.Object(), nullptr, "set");
    EXPECT_EQ(probe.Lines(), "");
    const Lume::Hrtf set("");
    post_hrtf_xml_infos(probe.Object(), &set.GetHrtfHeaderInfos(), "set");
    EXPECT_EQ(probe.Lines(),
              "post: set : owner : MIT |post: set : subject : KEMAR|post: set : copyright : MIT|"
              "post: set : hrtf type : Binaural|post: set : filter type : BiquadCells|"
              "post: set : flagItdExtracted : itd not extracted|"
              "post: set : flagInterp : data have not been interpolated|"
              "post: set : original measurement set : unknown |post: set : interpolation set : none |"
              "post: set : coefficients : 25|post: set : channels : 2|post: set : sampling rate : 44100|"
              "post: set : points : 710|");

    post_sh_xml_infos(probe.Object(), nullptr, "sh");
    EXPECT_EQ(probe.Lines(), "");
    const Lume::SphericalHarmonicBasisXmlInfo harmonics;
    post_sh_xml_infos(probe.Object(), &harmonics, "sh");
    EXPECT_EQ(probe.Lines(),
              "post: sh : owner :  |post: sh : subject : |post: sh : copyright : |post: sh : hrtf type : Binaural|"
              "post: sh : filter type : SH_COEFF|post: sh : normalization : SchmidtSeminormalized3D|"
              "post: sh : maxOrder : 0|post: sh : numFrequencyBins : 0|post: sh : channels : 0|"
              "post: sh : sampling rate : 0|post: sh : points : 0|");
}

}  // namespace
