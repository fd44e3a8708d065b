// SPDX-License-Identifier: Apache-2.0
// Destination: golden desert sand with ripples, dunes behind.
#version 3.7;
#ifndef (Rays) #declare Rays = 40; #end
global_settings {
  assumed_gamma 1.0
  max_trace_level 4
  noise_generator 3
  radiosity {
    count Rays
    pretrace_start 0.08
    pretrace_end 0.02
    nearest_count 6
    error_bound 0.6
    recursion_limit 1
    low_error_factor 0.6
    gray_threshold 0.3
    brightness 0.8
  }
}
#include "outdoor.inc"
#include "sand.inc"

camera {
  perspective
  location <0, 0.98, -3.1>
  right x * 1280 / 853
  up y
  direction z
  angle 48
  look_at <0, 0.46, 0.9>
}

light_source {
  vnormalize(<-0.80, 0.62, -0.25>) * 20000
  color rgb <1, 0.89, 0.73> * 1.9
  area_light x * 2200, y * 2200, 4, 4 adaptive 1 circular orient
}
sky_sphere {
  pigment {
    gradient y
    color_map {
      [0.00 Rgb255(226, 216, 200)]
      [0.08 Rgb255(196, 208, 216)]
      [0.30 Rgb255(128, 170, 210)]
      [1.00 Rgb255(70, 120, 180)]
    }
  }
}
Cloud_deck(7000, <7000, 1, 12000>, 0.46, 0.5, Rgb255(246, 243, 238), <300, 0, 900>)
fog { fog_type 2 distance 2600 fog_offset 0 fog_alt 60 color Rgb255(222, 208, 188) }

#declare Dark_sand = color srgb <176, 130, 86> / 255;
#declare Light_sand = color srgb <228, 190, 142> / 255;

// ---- near floor: 14 m across, ripples as true relief ----------------------
#declare Floor =
  function (x, z) {
    0.3 + 0.027 * Ripples(x, z, 0.19) + 0.05 * Octave_noise(x / 3.1, 1, z / 3.1) +
    0.0012 * Octave_noise(x * 26, 2, z * 26) - 0.20 * Smooth_ramp(z, 9.5, 11.5)
  }
height_field {
  function 1700, 1700 { Floor((x - 0.5) * 15, (1 - y) * 15 - 3.5) }
  smooth
  translate <-0.5, -0.32, 0>
  scale <15, 1, 15>
  translate -z * 3.5
  Sand_texture(Dark_sand, Light_sand, 0.006)
}

// ---- dunes ---------------------------------------------------------------
// Crests where the warped phase turns over: slow rise, steep fall.
#declare Dune =
  function (x, z) {
    Ripple_profile((z + 0.7 * x + 170 * Octave_noise(x / 260, 0.6, z / 260)) / 260) *
      (0.30 + 1.0 * Smooth_ramp(Octave_noise(x / 330, 7, z / 330), -0.4, 0.5))
  }
#declare Far_sand =
  function (x, z) {
    -0.06 - 0.6 * Smooth_ramp(z, 12, 60) +
    Smooth_ramp(z, 40, 420) * 36 * Dune(x, z) * (0.6 + 0.9 * Smooth_ramp(z, 250, 1000)) +
    0.25 * Smooth_ramp(z, 14, 50) * Octave_noise(x / 16, 1, z / 16)
  }
height_field {
  function 1700, 1700 { (Far_sand((x - 0.5) * 1700, (1 - y) * 1700 + 3) + 4) / 80 }
  smooth
  translate <-0.5, 0, 0>
  scale <1700, 80, 1700>
  translate <0, -4, 3>
  texture {
    pigment {
      function {
        Fraction(0.5 + 0.35 * Octave_noise(x / 0.7, y / 0.7, z / 0.7) +
          0.3 * Octave_noise(x / 30, y / 30, z / 30))
      }
      color_map { [0 Dark_sand] [1 Light_sand] }
    }
    normal { granite 0.10 scale 1.5 }
    finish { ambient 0 diffuse 0.85 }
  }
}
