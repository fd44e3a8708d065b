// SPDX-License-Identifier: Apache-2.0
// What others make of the same pictures, beside which the figures stand.
#ifndef IMAGEBLEND_BENCH_QUALITY_PEERS_H
#define IMAGEBLEND_BENCH_QUALITY_PEERS_H

#include <functional>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

// A source that lies at its place in a frame of the destination's size.
struct peer_input {
    cv::Mat source, alpha, destination;  // three bytes, one byte, three bytes
    std::string folder;                  // for files that a peer needs
};

struct peer {
    std::string name;
    std::function<cv::Mat(const peer_input&)> blend;  // an empty picture where it failed
};

// Those that are there; `missing` takes a line for each of the others.
std::vector<peer> find_peers(std::vector<std::string>* missing);

#endif
