#include "host/hrtf_infos.h"

void post_hrtf_xml_infos(t_object* x, Lume::HrtfHeaderInfos const* header, char const* prefix) {
    if (header == nullptr) return;
    // The blanks at the end of some lines belong to them: people's scripts compare the console.
    object_post(x, "%s : owner : %s ", prefix, header->owner.c_str());
    object_post(x, "%s : subject : %s", prefix, header->subject.c_str());
    object_post(x, "%s : copyright : %s", prefix, header->copyright.c_str());
    object_post(x, "%s : hrtf type : %s", prefix, Lume::GetHrtfTypeName(header->hrtfType).c_str());
    object_post(x, "%s : filter type : %s", prefix, Lume::GetHrtfFilterTypeName(header->filterType).c_str());
    object_post(x, "%s : flagItdExtracted : %s", prefix, Lume::GetFlagItdExtracted(header->flagItdExtracted).c_str());
    object_post(x, "%s : flagInterp : %s", prefix, Lume::GetFlagDataInterpolated(header->flagInterp).c_str());
    object_post(x, "%s : original measurement set : %s ", prefix, header->originalMeasurementSet.c_str());
    object_post(x, "%s : interpolation set : %s ", prefix, header->interpolatedSet.c_str());
    object_post(x, "%s : coefficients : %d", prefix, static_cast<int>(header->numCoefficients));
    object_post(x, "%s : channels : %d", prefix, static_cast<int>(header->numChannels));
    object_post(x, "%s : sampling rate : %d", prefix, static_cast<int>(header->samplingRate));
    object_post(x, "%s : points : %d", prefix, static_cast<int>(header->numPoints));
}
