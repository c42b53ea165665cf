// Claps once in a room, at the front left of the listener, and prints the energy that each of six loudspeakers plays.
#include <cstdio>

#include <orvan/orvan.h>

int main() {
    constexpr unsigned int blockSize = 64, numSpeakers = 6;
    Lume::OrvanVerb room(8);                              // eight internal channels
    room.Configure(48000.0f, blockSize, 1, numSpeakers);  // one source, the built-in ring of six
    room.SetSourcePosition(0, {-1.0f, 1.0f, 0.0f});       // metres: x to the right, y ahead, z up
    room.SetDirectParameters({});                         // a layer is silent until its gain is set
    room.SetEarlyParameters({});
    room.SetClusterParameters({});
    room.SetReverbParameters({.decayTime = 1.2f});

    orvandsp::AudioBuffer clap(1, blockSize), speakers(numSpeakers, blockSize);
    float energy[numSpeakers] = {};
    for (int block = 0; block < 1500; ++block) {  // two seconds
        clap.Clear();
        if (block == 200) clap.Impulse();  // when every gain has risen
        room.Process(speakers.GetChannels(), clap.GetChannels(), blockSize, orvandsp::allActiveInputs);
        for (unsigned int i = 0; i < numSpeakers; ++i) energy[i] += orvandsp::GetChannelEnergy(speakers, i);
    }
    for (const float value : energy) std::printf("%.4f\n", static_cast<double>(value));
}
