"""Sound files of 32-bit float, as programs of others write them."""

import array
import struct


def read(path):
    """The samples of each channel."""
    with open(path, "rb") as file:
        data = file.read()
    at = 12
    while data[at:at + 4] != b"data":
        if data[at:at + 4] == b"fmt ":
            channels = struct.unpack("<H", data[at + 10:at + 12])[0]
        at += 8 + struct.unpack("<I", data[at + 4:at + 8])[0]
    size = struct.unpack("<I", data[at + 4:at + 8])[0]
    samples = array.array("f", data[at + 8:at + 8 + size])
    return [samples[channel::channels] for channel in range(channels)]
