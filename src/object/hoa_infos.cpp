#include "object/hoa_infos.h"

// The blanks at the end of some lines belong to them: people's scripts compare the console.

namespace {

void PostOrder(t_object* x, char const* prefix, unsigned int order) {
    object_post(x, "%s : order : %d ", prefix, static_cast<int>(order));
}

void PostSorting(t_object* x, char const* prefix, Lume::SphericalHarmonicsSorting sorting) {
    object_post(x, "%s : sorting convention : %s", prefix, Lume::HOAPanning::GetSphericalHarmonicsSortingName(sorting));
}

}  // namespace

void post_hoa_infos(t_object* x, Lume::HOAPanning::HOAPannerInfos const& infos, char const* prefix) {
    PostOrder(x, prefix, infos.order);
    object_post(x, "%s : encoding convention : %s", prefix,
                Lume::HOAPanning::GetHOAPannerConventionName(infos.encodingConvention));
    PostSorting(x, prefix, infos.sorting);
}

void post_hoa_infos(t_object* x, Lume::HOADecoder::HOADecoderInfos const& infos, char const* prefix) {
    using Lume::HOADecoder;
    PostOrder(x, prefix, infos.order);
    object_post(x, "%s : subtype : %s ", prefix, infos.dimensionFlag != 0 ? "3D" : "2D");
    object_post(x, "%s : decoding method : %s", prefix, HOADecoder::GetHOADecoderMethodName(infos.decoderMethod));
    object_post(x, "%s : decoding type : %s", prefix, HOADecoder::GetHOADecoderTypeName(infos.decoderType));
    object_post(x, "%s : decoding convention : %s", prefix,
                HOADecoder::GetHOADecodingConventionName(infos.decodingConvention));
    object_post(x, "%s : decoder matrix conditionning : %.2f dB", prefix, infos.conditionNumber);
    PostSorting(x, prefix, infos.sorting);
}
