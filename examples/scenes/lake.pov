// SPDX-License-Identifier: Apache-2.0
// Destination: a mountain lake under a hazy sky.
#version 3.7;
global_settings { assumed_gamma 1.0 max_trace_level 6 noise_generator 3 }
#include "outdoor.inc"

#declare Horizon_colour = color srgb <196, 208, 218> / 255;
#declare Sun_direction = vnormalize(<-0.85, 0.46, -0.12>);

camera {
  perspective
  location <0, 7, -60>
  right x * 1280 / 853
  up y
  direction z
  angle 52
  look_at <0, 200, 1000>
}

light_source {
  Sun_direction * 100000
  color rgb <1.0, 0.91, 0.77> * 1.95
}
light_source {
  <0.3, 1, -0.4> * 100000
  color rgb <0.62, 0.75, 1.0> * 0.42
  shadowless
}
light_source {
  <1, 0.4, -0.6> * 100000
  color rgb <0.62, 0.75, 1.0> * 0.18
  shadowless
}

sky_sphere {
  pigment {
    gradient y
    color_map {
      [0.00 Horizon_colour]
      [0.10 Rgb255(184, 202, 217)]
      [0.30 Rgb255(152, 182, 209)]
      [0.50 Rgb255(124, 162, 200)]
      [1.00 Rgb255(70, 116, 170)]
    }
  }
}

Cloud_deck(6500, <4200, 1, 15000>, 0.50, 0.75, Rgb255(243, 244, 247), <900, 0, 5200>)
Cloud_deck(9500, <15000, 1, 15000>, 0.58, 0.40, Rgb255(247, 248, 250), <200, 0, -2600>)

fog { fog_type 2 distance 19000 fog_offset 0 fog_alt 480 color Horizon_colour }

// ---- terrain -------------------------------------------------------------

#declare Ridges =
  function (x, z) { f_ridged_mf(x, 0.37, z, 0.95, 2.17, 9, 0.92, 2.1, 3) }

// Signed distance-like value of the shore: negative over the lake.
#declare Shore =
  function (x, z) {
    sqrt(pow((x + 120 * sin(z / 700)) / 780, 2) + pow((z - 1300) / 1750, 2)) - 1 +
    0.34 * Octave_noise(x / 620, 0.5, z / 620)
  }

// Two low wooded points that reach into the lake near the camera.
#declare Points =
  function (x, z) {
    -25 + 36 * exp(-pow((x + 215) / 130, 2) - pow((z - 330 + 0.2 * x) / 62, 2))
  }
#declare Far_points =
  function (x, z) {
    -25 + 38 * exp(-pow((x - 520) / 210, 2) - pow((z - 820) / 90, 2))
  }

#declare Slopes =
  function (x, z) {
    -25 + 25 * Ramp(Shore(x, z), -0.1, 0) +
    Ramp(Shore(x, z), 0, 1) * 130 * (1 + 0.8 * Octave_noise(x / 330, 2, z / 330)) +
    Smooth_ramp(Shore(x, z), 0.25, 3.6) *
      (520 + 1050 * Ridges(x / 3300 + 0.4, z / 3300 + 2.2)) *
      (0.75 + 0.35 * Smooth_ramp(z, 2500, 7000))
  }

// Height above the lake.
#declare Height =
  function (x, z) { max(Slopes(x, z), Points(x, z), Far_points(x, z)) }

#declare Extent = 16000;
#declare Near_edge = -1500;
#declare Top = 3200;

#declare Forest =
  pigment {
    function { Fraction(0.5 + 0.8 * Octave_noise(x / 26, y / 26, z / 26)) }
    color_map {
      [0.2 Rgb255(20, 32, 22)]
      [0.5 Rgb255(38, 54, 34)]
      [0.8 Rgb255(66, 80, 46)]
    }
  }
#declare Rock =
  pigment {
    function { Fraction(0.5 + 0.8 * Octave_noise(x / 130, y / 120, z / 130)) }
    color_map {
      [0.1 Rgb255(72, 69, 68)]
      [0.5 Rgb255(110, 104, 98)]
      [0.9 Rgb255(146, 138, 128)]
    }
  }
#declare Meadow =
  pigment {
    function { Fraction(0.5 + 0.8 * Octave_noise(x / 90, y / 90, z / 90)) }
    color_map {
      [0.2 Rgb255(70, 82, 44)]
      [0.8 Rgb255(122, 118, 72)]
    }
  }
#declare Matte = finish { ambient 0 diffuse 0.8 }
#declare Rough = normal { granite 0.5 scale 130 }
#declare Canopy = normal { bumps 0.9 scale 9 }

// Vegetation line and snow line waver by some hundred metres.
#declare By_altitude =
  texture {
    function { Fraction((y + 330 * Octave_noise(x / 420, y / 500, z / 420)) / 3000) }
    texture_map {
      [0.235 pigment { Forest } normal { Canopy } finish { Matte }]
      [0.260 pigment { Meadow } normal { Canopy } finish { Matte }]
      [0.300 pigment { Meadow } normal { Rough } finish { Matte }]
      [0.340 pigment { Rock } normal { Rough } finish { Matte }]
      [0.420 pigment { Rock } normal { Rough } finish { Matte }]
      [0.455 pigment { color Rgb255(236, 239, 244) } finish { ambient 0 diffuse 0.85 }]
    }
  }
#declare Steep = texture { pigment { Rock } normal { Rough } finish { Matte } }

#declare Terrain =
  height_field {
    function 1500, 1500 {
      (Height((x - 0.5) * Extent, Near_edge + (1 - y) * Extent) + 30) / Top
    }
    smooth
    translate <-0.5, 0, 0>
    scale <Extent, Top, Extent>
    translate <0, -30, Near_edge>
  }

object {
  Terrain
  texture {
    slope { y }
    texture_map {
      [0.66 Steep]
      [0.78 By_altitude]
    }
  }
}

// ---- trees on the near shores --------------------------------------------

#macro Spruce(Seed)
  #local Rnd = seed(Seed);
  mesh {
    #local Tier = 0;
    #while (Tier < 9)
      #local Base = 0.08 + Tier * 0.1;
      #local Radius = 0.21 * (1 - Tier / 9.5);
      #local Apex = <0, Base + 0.2, 0>;
      #local Step = 0;
      #while (Step < 9)
        #local A0 = (Step + rand(Rnd) * 0.6) * 40;
        #local A1 = A0 + 34;
        #local R0 = Radius * (0.7 + 0.5 * rand(Rnd));
        #local Drop = -0.05 * rand(Rnd);
        triangle {
          Apex,
          vrotate(<R0, Base + Drop, 0>, y * A0),
          vrotate(<R0 * 0.85, Base - 0.02, 0>, y * A1)
        }
        #local Step = Step + 1;
      #end
      #local Tier = Tier + 1;
    #end
  }
#end
#declare Spruces = array[3]
#declare Spruces[0] = Spruce(11)
#declare Spruces[1] = Spruce(23)
#declare Spruces[2] = Spruce(37)
#declare Greens = array[4]
#declare Greens[0] = color srgb <34, 50, 32> / 255;
#declare Greens[1] = color srgb <44, 60, 36> / 255;
#declare Greens[2] = color srgb <28, 42, 30> / 255;
#declare Greens[3] = color srgb <62, 70, 38> / 255;

#declare Rnd = seed(4711);
#declare Tries = 0;
#while (Tries < 60000)
  // More tries near the camera; the field of view is a wedge.
  #declare Tz = 150 + 3900 * pow(rand(Rnd), 1.4);
  #declare Tx = (rand(Rnd) * 2 - 1) * (Tz * 0.56 + 80);
  #declare Size = 12 + 14 * rand(Rnd);
  #declare Turn = rand(Rnd) * 360;
  #declare Kind = int(rand(Rnd) * 2.999);
  #declare Tint = int(rand(Rnd) * 3.3);
  #declare Th = Height(Tx, Tz);
  #if (Th > 1.5 & Th < 420 & Octave_noise(Tx / 140, 3, Tz / 140) > -0.22)
    object {
      Spruces[Kind]
      scale Size * <1, 1.1, 1>
      rotate y * Turn
      translate <Tx, Th - 1, Tz>
      pigment { color Greens[Tint] }
      finish { ambient 0.02 diffuse 0.8 }
    }
  #end
  #declare Tries = Tries + 1;
#end

// ---- water ---------------------------------------------------------------

plane {
  y, 0
  pigment { color Rgb255(18, 40, 48) }
  finish {
    ambient 0
    diffuse 0.5
    reflection { 0.03, 0.95 fresnel }
    conserve_energy
  }
  normal {
    average
    normal_map {
      [1 bumps 0.045 scale <2.2, 1, 0.9>]
      [1 bumps 0.07 scale <9, 1, 4> rotate y * 20]
      [1 bumps 0.10 scale <60, 1, 30> rotate y * -15]
    }
  }
  interior { ior 1.33 }
}
