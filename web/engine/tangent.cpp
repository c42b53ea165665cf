/// The tangent that the program has from its C library, for a page to give the same bits: it designs all shelves. The
/// two libraries' other functions agree wherever the engine calls them.
///
/// After fdlibm's k_tanf and e_rem_pio2f (Sun Microsystems, 1993; in single precision by I. L. Taylor), which
/// "Permission to use, copy, modify, and distribute is freely granted" for. Arguments of shelves only: 0 to a half pi.
/// Of all these single-precision numbers 256 give another last bit, all of them for crossovers above 0.44 of the sample
/// rate.

#include <bit>
#include <cmath>
#include <cstdint>

namespace {

constexpr float pi4 = 7.8539812565e-01f, pi4Rest = 3.7748947079e-08f;
constexpr float pi2 = 1.5707855225e+00f, pi2Rest = 1.0804334124e-05f;              // 17 bits, and what they leave
constexpr float pi2Second = 1.0804273188e-05f, pi2SecondRest = 6.0770999344e-11f;  // 34 bits
constexpr float reflectFrom = 0x1.594280p-1f;                                      // where tan(pi/4 - x) serves better

constexpr float taylor[] = {3.3333334327e-01f, 1.3333334029e-01f, 5.3968254477e-02f, 2.1869488060e-02f,
                            8.8632395491e-03f, 3.5920790397e-03f, 1.4562094584e-03f, 5.8804126456e-04f,
                            2.4646313977e-04f, 7.8179444245e-05f, 7.1407252108e-05f, -1.8558637748e-05f,
                            2.5907305826e-05f};

float Truncated(float value) {
    return std::bit_cast<float>(std::bit_cast<std::uint32_t>(value) & 0xfffff000u);
}

/// tan(x + rest), or -1 / tan(x + rest), for |x| up to a quarter pi.
float Tangent(float x, float rest, bool inverse) {
    const bool negative = x < 0.0f;
    const bool reflect = std::fabs(x) >= reflectFrom;
    const float sign = negative ? -1.0f : 1.0f;
    if (std::fabs(x) < 0x1p-13f) return inverse ? -1.0f / x : x;
    if (reflect) {
        if (negative) {
            x = -x;
            rest = -rest;
        }
        x = (pi4 - x) + (pi4Rest - rest);
        rest = 0.0f;
        if (std::fabs(x) < 0x1p-13f) {
            const float i = inverse ? -1.0f : 1.0f;
            return sign * i * (1.0f - 2.0f * i * x);
        }
    }
    const float z = x * x, w2 = z * z;
    float const* const t = taylor;
    float r = t[1] + w2 * (t[3] + w2 * (t[5] + w2 * (t[7] + w2 * (t[9] + w2 * t[11]))));
    const float v = z * (t[2] + w2 * (t[4] + w2 * (t[6] + w2 * (t[8] + w2 * (t[10] + w2 * t[12])))));
    const float s = z * x;
    r = rest + z * (s * (r + v) + rest);
    r += t[0] * s;
    const float w = x + r;
    if (reflect) {
        const float i = inverse ? -1.0f : 1.0f;
        return sign * (i - 2.0f * (x - (w * w / (w + i) - r)));
    }
    if (!inverse) return w;
    const float high = Truncated(w), low = r - (high - x);
    const float a = -1.0f / w, b = Truncated(a);
    return b + a * ((1.0f + b * high) + b * low);
}

}  // namespace

extern "C" float tanf(float x) {
    if (!(std::fabs(x) > 0x1.921fb4p-1f)) return Tangent(x, 0.0f, false);
    // Beyond a quarter pi: from a half pi on.
    float z = x - pi2, first = pi2Rest;
    if ((std::bit_cast<std::uint32_t>(x) & 0xfffffff0u) == 0x3fc90fd0u) {  // near a half pi: more digits
        z -= pi2Second;
        first = pi2SecondRest;
    }
    const float y = z - first;
    return Tangent(y, (z - y) - first, true);
}
