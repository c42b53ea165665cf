/* The same in C: claps once in a room, and prints the energy that each of six loudspeakers plays. */
#include <orvan/orvan_c.h>
#include <stdio.h>

enum { blockSize = 64, numSpeakers = 6 };

int main(void) {
    float clap[blockSize], speakers[numSpeakers][blockSize];
    float *inputs[1], *outputs[numSpeakers];
    double energy[numSpeakers] = {0.0};
    orvan_room *room = orvan_create(1, numSpeakers, 0, NULL);
    if (room == NULL || orvan_configure(room, 48000.0, blockSize, 0, ORVAN_STEADY) != ORVAN_OK) {
        fprintf(stderr, "%s\n", orvan_error(room));
        return 1;
    }
    orvan_set_by_name(room, "tr0", 1.2f);                  /* seconds */
    orvan_place_source_at(room, 0, -45.0f, 0.0f, 1.4142f); /* front left: azimuth, elevation, distance */
    orvan_settle(room);

    inputs[0] = clap;
    for (int i = 0; i < numSpeakers; ++i) outputs[i] = speakers[i];
    for (int block = 0; block < 1500; ++block) { /* two seconds */
        for (int k = 0; k < blockSize; ++k) clap[k] = block == 0 && k == 0 ? 1.0f : 0.0f;
        orvan_process(room, outputs, inputs, blockSize);
        for (int i = 0; i < numSpeakers; ++i)
            for (int k = 0; k < blockSize; ++k) energy[i] += (double)speakers[i][k] * (double)speakers[i][k];
    }
    for (int i = 0; i < numSpeakers; ++i) printf("%.4f\n", energy[i]);
    orvan_free(room);
    return 0;
}
