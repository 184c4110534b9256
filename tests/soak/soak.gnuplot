# What the process held in the course of the calls. Needs `table` (CSV) and `image` (PNG).
set terminal pngcairo size 1200,1000 font "sans,12" background "#ffffff"
set output image
set datafile separator ","
set key outside right top vertical width 2 samplen 2
set grid lc rgb "#dddddd"
set border 3 lc rgb "#888888"
set tics nomirror
set lmargin 12
set rmargin 26
set format x "%.0s%c"
set multiplot layout 4,1 title "The client, called again and again, with a fault in each 17th reply"
set yrange [0:*]
set ylabel "KiB"
plot table every ::1 using 1:($7/1024) with lines lw 2 lc rgb "#0072b2" title "heap in use"
set ylabel "MiB"
plot table every ::1 using 1:($8/1024) with lines lw 2 lc rgb "#56b4e9" title "resident memory"
set ylabel "count"
set yrange [0:10]
plot table every ::1 using 1:4 with lines lw 2 lc rgb "#d55e00" title "descriptors", \
     table every ::1 using 1:5 with lines lw 2 lc rgb "#009e73" title "threads", \
     table every ::1 using 1:6 with lines lw 2 lc rgb "#cc79a7" title "temporary files"
set yrange [0:*]
set xlabel "calls"
plot table every ::1 using 1:3 with lines lw 2 lc rgb "#333333" title "calls that threw"
