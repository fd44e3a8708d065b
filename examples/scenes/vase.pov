// SPDX-License-Identifier: Apache-2.0
// Source: a glazed jar standing in pale beach sand in soft sunlight.
// Declare=Mask=1 renders what is seen of the jar white on black.
// Declare=Jar=0 leaves the jar out, Declare=Jar=2 leaves its shadow alone.
#version 3.7;
#ifndef (Mask) #declare Mask = 0; #end
#ifndef (Jar) #declare Jar = 1; #end
#ifndef (Rays) #declare Rays = 36; #end
global_settings {
  assumed_gamma 1.0
  max_trace_level 5
  noise_generator 3
  #if (!Mask)
    radiosity {
      count Rays
      pretrace_start 0.08
      pretrace_end 0.02
      nearest_count 4
      error_bound 0.5
      recursion_limit 1
      low_error_factor 0.6
      gray_threshold 0.2
      brightness 1
    }
  #end
}
#include "outdoor.inc"
#include "sand.inc"
#include "amphora.inc"

camera {
  perspective
  location <0, 0.98, -2.35>
  right x * 900 / 700
  up y
  direction z
  angle 36
  look_at <0, 0.22, 0>
}

#declare Jar_place =
  transform { rotate y * -28 translate -y * 0.05 rotate <4, 0, -7> translate <0.02, 0, 0> }

#declare Mound = function (x, z) { exp(-(pow(x / 0.22, 2) + pow(z / 0.2, 2))) }
#declare Beach =
  function (x, z) {
    0.3 + 0.018 * Ripples(x + 3, z + 1, 0.16) * (1 - 0.8 * Mound(x, z)) +
    0.035 * Octave_noise(x / 1.4, 1, z / 1.4) + 0.022 * Mound(x, z) +
    0.0016 * Octave_noise(x * 28, 2, z * 28)
  }
#declare Sand_relief =
  height_field {
    function 1400, 1400 { Beach((x - 0.5) * 8, (1 - y) * 8 - 3) }
    smooth
    translate <-0.5, -0.32, 0>
    scale <8, 1, 8>
    translate -z * 3
  }

#if (Mask)
  object {
    Jar_shape
    transform { Jar_place }
    texture { pigment { color rgb 1 } finish { ambient 1 diffuse 0 } }
  }
  object { Sand_relief texture { pigment { color rgb 0 } finish { ambient 0 diffuse 0 } } }
  background { color rgb 0 }
#else
  light_source {
    vnormalize(<-0.66, 0.95, -0.42>) * 50
    color rgb <1, 0.95, 0.87> * 1.25
    area_light x * 11, y * 11, 5, 5 adaptive 1 circular orient jitter
  }
  sky_sphere {
    pigment {
      gradient y
      color_map {
        [0.50 Rgb255(214, 217, 219)]
        [0.56 Rgb255(190, 202, 214)]
        [0.75 Rgb255(168, 186, 206)]
        [1.00 Rgb255(150, 172, 198)]
      }
      scale 2
      translate -y
    }
  }

  // The sea behind the beach, lost in haze.
  plane {
    y, -0.12
    pigment { color Rgb255(86, 108, 118) }
    normal { bumps 0.5 scale <1.6, 1, 0.5> }
    finish { ambient 0 diffuse 0.5 reflection { 0.05, 0.5 } }
  }
  fog { fog_type 1 distance 900 color srgbt <0.83, 0.84, 0.85, 0.5> }

  object {
    Sand_relief
    Sand_texture(Rgb255(176, 137, 96), Rgb255(232, 198, 153), 0.006)
  }
  #if (Jar)
    object {
      Jar_shape
      texture { Jar_texture }
      transform { Jar_place }
      #if (Jar = 2) no_image no_reflection #end
    }
  #end

  // A scatter of small stones, none near the jar or right behind it.
  #declare Rnd = seed(97);
  #declare Count = 0;
  #while (Count < 130)
    #declare Px = (rand(Rnd) - 0.5) * 5;
    #declare Pz = -1.6 + 5.5 * rand(Rnd);
    #declare Size = 0.006 + 0.018 * pow(rand(Rnd), 3);
    #declare Grey = 0.12 + 0.3 * rand(Rnd);
    #declare Turn = rand(Rnd) * 360;
    #if (abs(Px) > 0.6 + 0.14 * max(Pz, 0) | Pz < -0.55)
      sphere {
        0, 1
        scale Size * <1.3, 0.7, 1>
        rotate y * Turn
        translate <Px, Beach(Px, Pz) - 0.32 + Size * 0.2, Pz>
        pigment { color rgb <1.05, 1, 0.94> * Grey }
        normal { bumps 0.3 scale Size * 0.5 }
        finish { ambient 0 diffuse 0.8 }
      }
    #end
    #declare Count = Count + 1;
  #end
#end
