# Draws <folder>/enclosing_box.png from what example_enclosing_box wrote:
#   gnuplot -e "folder='build/gallery'" examples/enclosing_box.gp

data = folder.'/enclosing_box.dat'
set terminal pngcairo size 900,580 font 'DejaVu Sans,11'
set output folder.'/enclosing_box.png'

# From dark blue by green to yellow: lightness alone tells the heights apart.
set palette defined (0 '#440154', 1 '#3B528B', 2 '#21908C', 3 '#5DC863', 4 '#FDE725')
orange = '#D55E00'

stats data index 3 using 1 name 'along' nooutput
stats data index 3 using 2 name 'found' nooutput

set xrange [-520:520]
set yrange [-520:520]
set zrange [-380:380]
set xtics 250 offset 0,-0.2 textcolor rgb 'black'
set ytics 250 offset 0,-0.2 textcolor rgb 'black'
set ztics 250 textcolor rgb 'black'
set label 'x (m)' at 80,800,-380 center
set label 'y (m)' at 820,0,-380 center
set label 'z (m)' at 520,-690,0 center rotate
set border 31 lc rgb '#999999'
set xyplane relative 0
set view 62,108,1.28
set view equal xyz
set cbrange [0:100]
set cbtics 25 textcolor rgb 'black'
set cblabel 'height of a point above the lowest one (m)' offset 0,0.3
set colorbox horizontal user origin screen 0.07,0.115 size screen 0.4,0.03
set key at screen 0.93,0.14 samplen 3

set multiplot title 'A hill of 860 m x 600 m x 101 m, scanned askew' font ',15'
set size 0.48,0.8
set origin 0.015,0.16
set title sprintf('Box along the axes: %.0f million m^3', along_min) font ',13'
splot data index 0 using 1:2:3:4 with points pt 7 ps 0.25 lc palette notitle, \
      data index 1 using 1:2:3:4:5:6 with vectors nohead lw 2.5 lc rgb orange title 'edges of the box'
unset colorbox
unset key
set origin 0.51,0.16
set title sprintf('Smallest box found: %.0f million m^3', found_min) font ',13'
splot data index 0 using 1:2:3:4 with points pt 7 ps 0.25 lc palette, \
      data index 2 using 1:2:3:4:5:6 with vectors nohead lw 2.5 lc rgb orange
unset multiplot
