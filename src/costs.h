// SPDX-License-Identifier: Apache-2.0
// What work costs, and from which costs on it is cut up or handed to threads.
#ifndef IMAGEBLEND_COSTS_H
#define IMAGEBLEND_COSTS_H

// About as many pixels of a blend as one thread gets through in a millisecond.
enum {
    PLAIN_PIXELS_A_MS = 50000,
    WASM_PIXELS_A_MS = 250000,
    ARM_PIXELS_A_MS = 250000,
    X86_PIXELS_A_MS = 1000000
};

// Work of less than this is done sooner by the caller alone: starting a thread takes 10 to 30 us and
// saves at most half of the work where there are two cores.
enum { THREADED_US = 200 };

// A stage of less than this is done by the caller all the same: telling a helper that looks for work
// and waiting for it takes 1 to 2 us.
enum { THREADED_STAGE_US = 4 };

// A piece of a stage is about as long. Longer ones leave one side waiting for the other's last one;
// shorter ones work out more rows twice.
enum { PIECE_US = 6 };

// A piece has a multiple of this many rows: it works out up to four more.
enum { PIECE_ROWS = 16 };

// Turning a pixel takes about twice as long as blending it, copying one a fifth as long.
enum { TURNED_PIXEL_COST = 2, COPIED_PIXELS_A_COST = 5 };

// A turned row fetches what the row this far below it will read.
enum { FETCHED_ROWS = 12 };

// Rows of a frame that are copied as one piece of work.
enum { COPY_ROWS = 64 };

// Short rows of the coarsest level are blended together, up to this many pixels.
enum { TOP_RUN_PIXELS = 256 };

#endif
