#!/bin/bash
# Draws what KernelHost.Many measured: the time of attach and of attach plus scan over the number of disks that the host had already.
#   attach-scan-plot.sh FILE... >docs/pictures/attach-scan.svg     FILE: output of many_tests; of several, the fastest time counts
# On standard error: the straight lines through the points, t = BASE ms + SLOPE ms * disks, and the slopes of both halves. Exit status 1
# where attach and scan grow faster than linearly: where the second half is more than half as steep again as the first.
set -euo pipefail
[[ $# -gt 0 ]] || { sed -n '2,5s/^# \{0,1\}//p' "$0" >&2; exit 2; }
awk -F '\t' '
function least(old, new) { return old == "" || new < old ? new : old }
function fit(times, from, to,    i, n, x, y, xx, xy) {         # leaves base and slope
    n = x = y = xx = xy = 0
    for (i = from; i <= to; i++) { n++; x += i; y += times[i]; xx += i * i; xy += i * times[i] }
    slope = (n * xy - x * y) / (n * xx - x * x); base = (y - slope * x) / n
}
function text(x, y, anchor, words) {
    printf "<text x=\"%d\" y=\"%d\" text-anchor=\"%s\">%s</text>\n", x, y, anchor, words
}
function px(disks) { return 60 + disks * 540 / most }
function py(time) { return 320 - time * 280 / highest }
function draw(times, color,    i) {
    for (i = 0; i <= most; i++) printf "<circle cx=\"%.1f\" cy=\"%.1f\" r=\"2.5\" fill=\"%s\"/>\n", px(i), py(times[i]), color
    fit(times, 0, most)
    printf "<line x1=\"%.1f\" y1=\"%.1f\" x2=\"%.1f\" y2=\"%.1f\" stroke=\"%s\"/>\n", px(0), py(base), px(most), py(base + slope * most), color
}
function tell(name, times,    all, first) {
    fit(times, 0, most); all = sprintf("%.0f ms + %.1f ms * disks", base, slope)
    fit(times, 0, int(most / 2)); first = slope
    fit(times, int(most / 2) + 1, most)
    printf "%s: %s; slope of the first half %.1f, of the second %.1f\n", name, all, first, slope >"/dev/stderr"
    return slope > 1.5 * first
}
$1 == "disks" { attach[$2] = least(attach[$2], $4); both[$2] = least(both[$2], $4 + $6); if ($2 + 0 > most) most = $2 + 0 }
END {
    for (i = 0; i <= most; i++) if (both[i] > highest) highest = both[i]
    step = highest > 4000 ? 1000 : highest > 1500 ? 500 : 250
    highest = (int(highest / step) + 1) * step
    print "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 640 370\" font-family=\"sans-serif\" font-size=\"12\">"
    print "<rect width=\"640\" height=\"370\" fill=\"white\"/>"
    for (t = 0; t <= highest; t += step) {
        printf "<line x1=\"60\" x2=\"600\" y1=\"%.1f\" y2=\"%.1f\" stroke=\"#ddd\"/>\n", py(t), py(t)
        text(54, py(t) + 4, "end", t)
    }
    for (d = 0; d <= most; d += most > 32 ? 8 : 4) text(px(d), 338, "middle", d)
    text(330, 360, "middle", "disks that the host had already")
    text(60, 24, "start", "ms")
    draw(both, "#1f5fa8"); text(596, py(both[most]) - 14, "end", "attach and scan")
    draw(attach, "#b5541c"); text(596, py(attach[most]) - 10, "end", "attach alone")
    print "</svg>"
    tell("attach alone", attach)
    if (tell("attach and scan", both)) { print "attach and scan grow faster than linearly" >"/dev/stderr"; exit 1 }
}' "$@"
