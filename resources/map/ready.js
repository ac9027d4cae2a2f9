// The part of a document library that the page uses: $(document).ready(handler).
"use strict";

function $(page) {
    return {
        ready: function (handler) {
            if (page.readyState === "loading")
                page.addEventListener("DOMContentLoaded", handler);
            else
                handler();
        }
    };
}
