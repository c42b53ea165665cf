#include "object/hrtf_infos.h"

#include "harmonics/spherical_harmonics.h"

namespace {

// The blanks at the end of some lines belong to them: people's scripts compare the console.

void PostOrigin(t_object* x, char const* prefix, char const* owner, char const* subject, char const* copyright) {
    object_post(x, "%s : owner : %s ", prefix, owner);
    object_post(x, "%s : subject : %s", prefix, subject);
    object_post(x, "%s : copyright : %s", prefix, copyright);
}

void PostTypes(t_object* x, char const* prefix, Lume::HrtfType type, Lume::HrtfFilterType filterType) {
    object_post(x, "%s : hrtf type : %s", prefix, Lume::GetHrtfTypeName(type).c_str());
    object_post(x, "%s : filter type : %s", prefix, Lume::GetHrtfFilterTypeName(filterType).c_str());
}

}  // namespace

void post_hrtf_xml_infos(t_object* x, Lume::HrtfHeaderInfos const* header, char const* prefix) {
    if (header == nullptr) return;
    PostOrigin(x, prefix, header->owner.c_str(), header->subject.c_str(), header->copyright.c_str());
    PostTypes(x, prefix, header->hrtfType, header->filterType);
    object_post(x, "%s : flagItdExtracted : %s", prefix, Lume::GetFlagItdExtracted(header->flagItdExtracted).c_str());
    object_post(x, "%s : flagInterp : %s", prefix, Lume::GetFlagDataInterpolated(header->flagInterpolated).c_str());
    object_post(x, "%s : original measurement set : %s ", prefix, header->originalMeasurementSet.c_str());
    object_post(x, "%s : interpolation set : %s ", prefix, header->interpolationSet.c_str());
    object_post(x, "%s : coefficients : %d", prefix, static_cast<int>(header->numCoefficients));
    object_post(x, "%s : channels : %d", prefix, static_cast<int>(header->numChannels));
    object_post(x, "%s : sampling rate : %d", prefix, static_cast<int>(header->samplingRate));
    object_post(x, "%s : points : %d", prefix, static_cast<int>(header->numPoints));
}

void post_sh_xml_infos(t_object* x, Lume::SphericalHarmonicBasisXmlInfo const* header, char const* prefix) {
    if (header == nullptr) return;
    PostOrigin(x, prefix, header->owner, header->subject, header->copyright);
    PostTypes(x, prefix, header->hrtfType, header->filterType);
    object_post(x, "%s : normalization : %s", prefix,
                Lume::GetSphericalHarmonicsNormalizatioName(header->normalization));
    object_post(x, "%s : maxOrder : %d", prefix, static_cast<int>(header->maxOrder));
    object_post(x, "%s : numFrequencyBins : %d", prefix, static_cast<int>(header->numFrequencyBins));
    object_post(x, "%s : channels : %d", prefix, static_cast<int>(header->numChannels));
    object_post(x, "%s : sampling rate : %d", prefix, static_cast<int>(header->samplingRate));
    object_post(x, "%s : points : %d", prefix, static_cast<int>(header->numPoints));
}
