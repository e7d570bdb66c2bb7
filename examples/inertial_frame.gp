# Draws <folder>/inertial_frame.png from what example_inertial_frame wrote:
#   gnuplot -e "folder='build/gallery'" examples/inertial_frame.gp

data = folder.'/inertial_frame.dat'
set terminal pngcairo size 900,560 font 'DejaVu Sans,11'
set output folder.'/inertial_frame.png'

# From yellow by green to dark blue: lightness alone tells the depths apart. The lines differ in
# lightness, too.
set palette defined (0 '#FDE725', 1 '#5DC863', 2 '#21908C', 3 '#3B528B', 4 '#440154')
orange = '#D55E00'
blue = '#0072B2'

stats data index 2 using 1 name 'up0' nooutput
stats data index 2 using 2 name 'up1' nooutput
stats data index 2 using 4 name 'depth' nooutput
stats data index 2 using 5 name 'dip' nooutput

set border 3
set tics nomirror
set cbrange [0:700]
set cbtics 100
set style textbox opaque fillcolor rgb 'white' noborder margins 0.3,0.3
set multiplot title 'Earthquakes near Fiji and Tonga, and the slab that sinks there' font ',15'
set size ratio -1

set lmargin at screen 0.09
set rmargin at screen 0.465
set tmargin at screen 0.86
set bmargin at screen 0.1
set title 'Seen from above' font ',13'
set xlabel 'east (km)'
set ylabel 'north (km)'
set xrange [-1900:850]
set yrange [-2000:1400]
set xtics 500
set ytics 500
set key at graph 0.02,0.33 left top reverse Left samplen 2
set cblabel 'depth (km), in both pictures'
set colorbox horizontal user origin screen 0.555,0.175 size screen 0.415,0.035
plot data index 0 using 1:($4 == 0 ? $2 : NaN) with points pt 2 ps 0.6 lc rgb '#999999' title 'left out', \
     data index 0 using 1:($4 == 1 ? $2 : NaN):3 with points pt 7 ps 0.6 lc palette notitle, \
     data index 1 using (-$1):(-$2):(2*$1):(2*$2) with vectors nohead lw 7 lc rgb 'white' notitle, \
     data index 1 every ::2::2 using (-$1):(-$2):(2*$1):(2*$2) with vectors nohead lw 4 lc rgb blue title 'axis 2', \
     data index 1 every ::1::1 using (-$1):(-$2):(2*$1):(2*$2) with vectors nohead lw 4 lc rgb orange title 'axis 1', \
     data index 1 every ::0::0 using (-$1):(-$2):(2*$1):(2*$2) with vectors nohead lw 4 lc rgb 'black' title 'axis 0'

# Where the surface is, in the plane through the centroid; and where the slab's plane meets it.
surface(u) = (depth_min - up1_min * u) / up0_min
start = depth_min / up1_min

set lmargin at screen 0.555
set rmargin at screen 0.97
set bmargin at screen 0.36
set title 'In its own frame, seen along axis 2' font ',13'
set xlabel 'along axis 1 (km)'
set ylabel 'along axis 0 (km)'
set xrange [-650:500]
set yrange [-320:420]
set xtics 200
set ytics 200
unset colorbox
unset key
set label "Earth's surface" at -250,surface(-250) offset -0.8,0.9 center rotate by dip_min
set object circle at start,0 size 240 arc [0:dip_min] nowedge front fs empty border lc rgb 'black' lw 1.5
set label sprintf('dip %.0f°', dip_min) at start+235*cos(pi/5.5),235*sin(pi/5.5) left offset 0.8,0.3 front boxed
set label 'dashed: the plane of the slab' at 480,-260 right
set arrow from start,0 to 500,0 nohead front dt 2 lw 1.5 lc rgb 'black'
plot data index 0 using 6:($4 == 1 ? $5 : NaN):3 with points pt 7 ps 0.6 lc palette, \
     surface(x) with lines lw 2.5 lc rgb 'black'
unset multiplot
