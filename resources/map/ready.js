// What the page needs of a document library: $(document).ready(handler).
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
