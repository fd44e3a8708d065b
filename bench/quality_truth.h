// SPDX-License-Identifier: Apache-2.0
// What a case's result should be, at any place near the one asked for.
#ifndef IMAGEBLEND_BENCH_QUALITY_TRUTH_H
#define IMAGEBLEND_BENCH_QUALITY_TRUTH_H

#include "quality_cases.h"
#include "quality_measure.h"
#include "quality_peers.h"

class true_results {
  public:
    true_results(const scene_pictures& scene, const quality_case& which,
                 const case_pictures& pictures, bool leave_out_lost);

    // `shift` in steps of a quarter pixel; whole pixels for a plain move.
    truth at_shift(cv::Point2f shift) const;
    // Against the truth at the place where the result fits best within 1.5 pixels, or at the place
    // asked for.
    quality_figures judge(const cv::Mat& result, bool find_place) const;
    // The source where the case puts it, resampled by OpenCV.
    peer_input make_peer_input(const std::string& folder) const;

  private:
    // In the destination. An object turns about the middle of its box.
    cv::Point2f middle_of_drawing() const;
    // From --at to the middle of the object's box, be it of the alpha given or of the exact one.
    cv::Point2f off_place(cv::Point2f shift) const;

    const scene_pictures& scene_;
    const case_pictures& pictures_;
    view view_;
    bool leave_out_lost_;
    const seen_object& seen_;
};

#endif
