#!/usr/bin/env bash
# Makes the sample video: slow northern lights, 16 seconds that end where they begin.
# Needs ffmpeg with libx264; takes a few minutes. Usage: make_sample.sh OUTPUT.mp4
set -eu

output=${1:?usage: make_sample.sh OUTPUT.mp4}
seconds=16
rate=30

# Every motion turns a whole number of times in the loop, so the last frame meets the first.
turn="(2*PI*T/$seconds)"
x="(X/W)"
y="(Y/H)"
# Two ribbons of light, a veil between them and a glow behind.
ribbonA="exp(-pow(($y-0.46-0.15*sin(3.1*$x+$turn)-0.05*sin(7.0*$x-$turn+1.0))*5.2,2))"
ribbonB="exp(-pow(($y-0.70-0.11*sin(4.3*$x-$turn+2.0)-0.04*sin(9.0*$x+2*$turn))*6.5,2))"
veil="(0.5+0.5*sin(5.0*$x+1.3*sin($turn+3.0*$y)-2.0*$y))"
glow="exp(-(pow(($x-0.66-0.14*cos($turn))*1.5,2)+pow(($y-0.30-0.08*sin($turn))*1.7,2))*2.6)"
light="st(0,$ribbonA)*0+st(1,$ribbonB)*0+st(2,$veil)*0+st(3,$glow)*0"
red="0.030+0.05*(1-$y)+0.10*ld(0)*(1-ld(2))+0.30*ld(1)*ld(2)+0.34*ld(3)"
green="0.055+0.09*$y+0.42*ld(0)*(0.35+0.65*ld(2))+0.10*ld(1)+0.13*ld(3)"
blue="0.150+0.16*(1-$y)+0.30*ld(0)+0.26*ld(1)+0.34*ld(3)"

# Drawn small, in 12 bits, and enlarged: nothing in it is sharp.
ffmpeg -hide_banner -loglevel error -y \
    -f lavfi -i "color=black:s=480x270:r=$rate:d=$seconds,format=gbrp12" \
    -vf "geq=r='4095*($light+$red)':g='4095*($light+$green)':b='4095*($light+$blue)',
scale=1920:1080:flags=bicubic+accurate_rnd:sws_dither=ed:out_color_matrix=bt709:out_range=tv,
format=yuv420p" \
    -c:v libx264 -preset slow -crf 23.5 -tune animation -aq-mode 3 -aq-strength 1.2 \
    -g $((seconds * rate)) -bf 3 -movflags +faststart \
    -color_primaries bt709 -color_trc bt709 -colorspace bt709 \
    -metadata title="Northern lights" "$output"
