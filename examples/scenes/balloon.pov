// SPDX-License-Identifier: Apache-2.0
// Source: a hot-air balloon in a pale morning sky above low hills.
// Declare=Mask=1 renders the object white on black with the same camera.
#version 3.7;
#ifndef (Mask) #declare Mask = 0; #end
global_settings {
  assumed_gamma 1.0
  max_trace_level 5
  noise_generator 3
  // No lamp lights the mask; this saturates every surface to white.
  #if (Mask) ambient_light rgb 1e6 #end
}
#include "outdoor.inc"
#include "envelope.inc"

camera {
  perspective
  location <0, 2, -190>
  right x * 900 / 700
  up y
  direction z
  angle 18
  look_at <0, 16, 0>
}

#declare Balloon_place =
  transform { rotate y * 14 rotate z * -1.2 translate <3.5, 5, 0> }

#if (Mask)
  union {
    object { Balloon_cloth }
    object { Balloon_basket }
    transform { Balloon_place }
  }
  background { color rgb 0 }
#else
  #declare Haze = color srgb <180, 193, 207> / 255;

  light_source {
    vnormalize(<-0.8, 0.62, -0.55>) * 100000
    color rgb <1, 0.94, 0.84> * 1.7
    area_light x * 2500, y * 2500, 3, 3 adaptive 1
  }
  light_source { <0.2, 1, -0.4> * 100000 color rgb <0.8, 0.88, 1> * 0.34 shadowless }
  light_source { <0.9, -0.4, -0.6> * 100000 color rgb <1, 0.92, 0.8> * 0.14 shadowless }

  sky_sphere {
    pigment {
      gradient y
      color_map {
        [0.00 Haze]
        [0.05 Rgb255(174, 191, 209)]
        [0.14 Rgb255(166, 186, 208)]
        [0.30 Rgb255(150, 171, 196)]
      }
    }
  }
  Cloud_deck(5200, <5200, 1, 2600>, 0.56, 0.30, Rgb255(208, 212, 217), <700, 0, 900>)
  fog { fog_type 2 distance 5200 fog_offset -200 fog_alt 260 color Haze }

  #declare Hills =
    function (x, z) {
      0.5 + 0.42 * Octave_noise(x / 900, 0.8, z / 900) + 0.10 * Smooth_ramp(z, 1500, 5000)
    }
  height_field {
    function 600, 600 { Hills((x - 0.5) * 6000, (1 - y) * 6000) }
    smooth
    translate <-0.5, 0, 0>
    scale <6000, 330, 6000>
    translate <0, -205, 60>
    pigment {
      function { Fraction(0.5 + 0.8 * Octave_noise(x / 40, y / 40, z / 70)) }
      color_map {
        [0.2 Rgb255(46, 54, 36)]
        [0.6 Rgb255(92, 94, 58)]
        [0.9 Rgb255(140, 128, 84)]
      }
    }
    normal { function { Octave_noise(x / 14, y / 14, z / 14) } 2 }
    finish { ambient 0 diffuse 0.75 }
  }
  union {
    object { Balloon_cloth }
    object { Balloon_basket }
    transform { Balloon_place }
  }
#end
