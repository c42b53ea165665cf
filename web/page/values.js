// Numbers as people read them, and where they stand on a slider.

export const silent = -120; // [dB] and below

/** A number with as many digits as it needs: 12400, 240, 2.5, 0.35. */
export function digits(value) {
  const size = Math.abs(value);
  const places = size >= 100 ? 0 : size >= 10 ? 1 : 2;
  return String(Number(value.toFixed(places))).replace("-", "−");
}

/** 12.4 kHz, 240 Hz, 2.5 s, 30°, 0.35. */
export function withUnit(value, unit) {
  if (unit === "degrees") return `${digits(value)}°`;
  if (unit === "Hz" && value >= 1000) return `${digits(value / 1000)} kHz`;
  return unit ? `${digits(value)} ${unit}` : digits(value);
}

/** What somebody typed: "2,5", "−3 dB", "1.2k". Not a number if it is none. */
export function typedNumber(text) {
  const match = /^\s*([-+−]?\d*[.,]?\d+(?:e[-+]?\d+)?)\s*(k?)/i.exec(text);
  if (!match) return NaN;
  return Number(match[1].replace("−", "-").replace(",", ".")) * (match[2] ? 1000 : 1);
}

/** Where a value stands on a slider from 0 to 1, and the other way round. */
export const scales = {
  linear: {
    place: (value, { min, max }) => (value - min) / (max - min),
    value: (place, { min, max }) => min + place * (max - min),
  },
  logarithmic: {
    place: (value, { min, max }) => Math.log(value / min) / Math.log(max / min),
    value: (place, { min, max }) => min * Math.pow(max / min, place),
  },
};

/** An azimuth in words. */
export function direction(azimuth) {
  const size = Math.round(Math.abs(azimuth));
  if (size === 0) return "ahead";
  if (size === 180) return "behind";
  return `${size}° ${azimuth > 0 ? "right" : "left"}`;
}

/** An angle from -180 up to 180. */
export const turned = (degrees) => ((((degrees + 180) % 360) + 360) % 360) - 180;

export const clamp = (value, least, greatest) => Math.min(greatest, Math.max(least, value));

/** A colour for each source: neighbours differ. */
export const sourceHue = (index) => (35 + index * 137.5) % 360;
